// Files of which no model comes, and models of which nothing is drawn.
#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

using namespace OrvTest;
using ::testing::IsEmpty;

namespace {

const QByteArray Points = "v 1 1 0\nv 2 1 0\nv 2 2 0\nv 1 2 0\nv 1 1 5\n";
const QByteArray Library = "newmtl red\nKd 1 0 0\n";

class OBJLoadingFailures : public GLTest
{
protected:
    /// Checks that there is no model and what is said about it.
    void expectFailure(const QString &fileName, const QString &message)
    {
        SCOPED_TRACE(message.toStdString());
        const LoadedOBJ loaded(fileName);
        EXPECT_FALSE(loaded.isModel());
        EXPECT_EQ(loaded.errorMessage(), message);
        EXPECT_THAT(loaded.warnings(), IsEmpty());
    }

    TemporaryModel _directory;
};

TEST_F(OBJLoadingFailures, SaysWhichFileCannotBeOpened)
{
    const auto message = [](const QString &fileName) {
        return QStringLiteral("Failed to load OBJ file '") + fileName + QLatin1Char('\'');
    };
    for (const QString &fileName :
         {_directory.path(QStringLiteral("none.obj")), _directory.directory(),
          QStringLiteral("none/../none.obj"), QStringLiteral("./100%1 %2.obj"), QString()})
        expectFailure(fileName, message(fileName));
}

struct LibraryCase
{
    const char *name;
    QByteArray text;
    const char *path; ///< beside the OBJ file unless absolute
};

const LibraryCase LibraryCases[] = {
    {"missing", "mtllib none.mtl\n", "/none.mtl"},
    {"missing at the end", Points + "f 1 2 3\nmtllib none.mtl", "/none.mtl"},
    {"second of two missing", "mtllib m.mtl\nmtllib none.mtl\n", "/none.mtl"},
    {"upwards, not cleaned", "mtllib ../none.mtl\n", "/../none.mtl"},
    {"directory", "mtllib sub\n", "/sub"},
    {"no name", "mtllib\n", ""},
    {"place marker in the name", "mtllib %1.mtl\n", "/%1.mtl"},
    {"cut at the blank", "mtllib my library.mtl\n", "/my"},
};

TEST_F(OBJLoadingFailures, SaysWhichLibraryCannotBeOpened)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    _directory.write(QStringLiteral("sub/m.mtl"), Library);
    for (const LibraryCase &row : LibraryCases) {
        SCOPED_TRACE(row.name);
        const QString fileName = _directory.write(QStringLiteral("model.obj"), row.text);
        expectFailure(fileName, QStringLiteral("Failed to load MTL file '") +
                                    _directory.directory() + QLatin1String(row.path) +
                                    QLatin1Char('\''));
    }
    const QString absolute = QStringLiteral("/nonexistent/directory/x.mtl");
    expectFailure(_directory.write(QStringLiteral("model.obj"), "mtllib " + absolute.toUtf8()),
                  QStringLiteral("Failed to load MTL file '/nonexistent/directory/x.mtl'"));
}

struct EmptyCase
{
    const char *name;
    QByteArray text;
};

const EmptyCase EmptyCases[] = {
    {"nothing", ""},
    {"comments", "# v 1 2 3\n\n"},
    {"positions only", Points},
    {"faces only", "f 1 2 3\nf 1 2 3\n"},
    {"faces without corners only", "f\nf\n"},
    {"positions and faces without corners", Points + "f\nf #\n"},
    {"bad faces only", Points + "f x\nf 1 2 3#\n"},
    {"normals and faces but no positions", "vn 0 0 1\nf 1//1 1//1 1//1\n"},
    {"positions behind the faces", "f 1 2 3\n" + Points},
    {"normals behind the faces", Points + "f 1 2 3\nvn 0 0 1\n"},
    {"texture coordinates behind the faces", Points + "f 1 2 3\nvt 0 0\n"},
    {"one empty normal line behind the faces", Points + "f 1 2 3\nvn\n"},
    {"a library only", "mtllib m.mtl\nusemtl red\n"},
    {"lone CRs", "v 1 2 3\rv 1 2 3\rv 1 2 3\rf 1 2 3\r"},
};

/// A model is given all the same, and nothing is said.
TEST_F(OBJLoadingFailures, GivesAnEmptyModelForNothingToDraw)
{
    _directory.write(QStringLiteral("m.mtl"), Library);
    for (const EmptyCase &row : EmptyCases) {
        SCOPED_TRACE(row.name);
        const LoadedOBJ loaded(_directory.write(QStringLiteral("model.obj"), row.text));
        EXPECT_TRUE(loaded.isModel());
        EXPECT_TRUE(loaded.isEmpty());
        EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
        EXPECT_THAT(loaded.warnings(), IsEmpty());
    }
}

TEST_F(OBJLoadingFailures, GivesAnEmptyModelWithoutAContext)
{
    const QString good = _directory.write(QStringLiteral("good.obj"), Points + "f 1 2 3\n");
    const QString bad = _directory.write(QStringLiteral("bad.obj"), "mtllib none.mtl\n");
    {
        const NoCurrentContext without;
        const LoadedOBJ loaded(good);
        EXPECT_TRUE(loaded.isModel());
        EXPECT_TRUE(loaded.isEmpty());
        EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
        EXPECT_FALSE(LoadedOBJ(bad).isModel());
    }
    EXPECT_FALSE(LoadedOBJ(good).isEmpty());
}

} // namespace
