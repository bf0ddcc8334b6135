// What a wrong call, and a call for help, gets.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <OrvModel/ModelVersions.h>

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QProcess>

namespace {

using namespace OrvTest;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const QString render = QStringLiteral("render");
const QString info = QStringLiteral("info");
const QString dump = QStringLiteral("dump");
const QString output = QStringLiteral("-o");

const char renderUsage[] = "Usage: orv render MODEL -o FILE [options]\n"
                           "Try 'orv render --help'.\n";

struct WrongCall
{
    const char *name;
    QStringList arguments;
    const char *message;
    const char *usage;
};

void PrintTo(const WrongCall &call, std::ostream *stream)
{
    *stream << "orv " << call.arguments.join(QLatin1Char(' ')).toStdString();
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// "MODEL" stands for a sound model, "OUT" for a place to write to.
const WrongCall wrongCalls[] = {
    {"nothing", {}, "No subcommand is given.", "Usage: orv SUBCOMMAND MODEL [options]\n"},
    {"subcommand", words("draw MODEL"), "Unknown subcommand 'draw'.",
     "Usage: orv SUBCOMMAND MODEL [options]\n"},
    {"globalOption", words("--fast"), "Unknown option '--fast'.",
     "Usage: orv SUBCOMMAND MODEL [options]\n"},
    {"option", words("render MODEL -o OUT.png --fast"), "Unknown option 'fast'.", renderUsage},
    {"missingValue", words("render MODEL -o"), "Missing value after '-o'.", renderUsage},
    {"noModel", words("render -o OUT.png"), "No model file is given.", renderUsage},
    {"noModelToDump", words("dump"), "No model file is given.",
     "Usage: orv dump MODEL [options]\n"},
    {"noModelToTellOf", words("info --json"), "No model file is given.",
     "Usage: orv info MODEL [options]\n"},
    {"secondModel", words("render MODEL other.obj -o OUT.png"), "Unexpected argument 'other.obj'.",
     renderUsage},
    {"noOutput", words("render MODEL"), "No image file is given: use -o FILE.", renderUsage},
    {"sizeZero", words("render MODEL -o OUT.png --size 0x10"), "Invalid size '0x10':", renderUsage},
    {"sizeNegative", words("render MODEL -o OUT.png --size -8x8"),
     "Invalid size '-8x8':", renderUsage},
    {"sizeHalf", words("render MODEL -o OUT.png --size 640"), "Invalid size '640':", renderUsage},
    {"sizeTail", words("render MODEL -o OUT.png --size 64x64x"),
     "Invalid size '64x64x':", renderUsage},
    {"sizeOneSide", words("render MODEL -o OUT.png --size 16385x1"),
     "Invalid size '16385x1':", renderUsage},
    {"sizeArea", words("render MODEL -o OUT.png --size 10001x10000"),
     "Invalid size '10001x10000':", renderUsage},
    {"azimuth", words("render MODEL -o OUT.png --azimuth north"),
     "Invalid azimuth 'north':", renderUsage},
    {"azimuthNaN", words("render MODEL -o OUT.png --azimuth nan"),
     "Invalid azimuth 'nan':", renderUsage},
    {"elevation", words("render MODEL -o OUT.png --elevation 90.5"),
     "Invalid elevation '90.5':", renderUsage},
    {"shading", words("render MODEL -o OUT.png --shading shiny"),
     "Invalid shading 'shiny':", renderUsage},
    {"twoShadings", words("render MODEL -o OUT.png --shading uv --normals"),
     "'--normals' and '--shading uv' exclude each other.", renderUsage},
    {"up", words("render MODEL -o OUT.png --up w"), "Invalid axis 'w': use x, y or z.",
     renderUsage},
    {"texturePixels", words("render MODEL -o OUT.png --texture-pixels -1"),
     "Invalid number of pixels '-1'.", renderUsage},
    {"formatOfStdout", words("render MODEL -o -"),
     "The format of an image on stdout is not known:", renderUsage},
    {"background", words("render MODEL -o OUT.png --background sky"),
     "Invalid colour 'sky':", renderUsage},
    {"threeBackgrounds", words("render MODEL -o OUT.png --background red,blue,green"),
     "Invalid colour 'red,blue,green':", renderUsage},
    {"targetAlone", words("render MODEL -o OUT.png --target 1,2,3"),
     "'--target' and '--distance' belong together.", renderUsage},
    {"distanceAlone", words("render MODEL -o OUT.png --distance 3"),
     "'--target' and '--distance' belong together.", renderUsage},
    {"target", words("render MODEL -o OUT.png --distance 3 --target 1,2"),
     "Invalid target '1,2': use three numbers, X,Y,Z.", renderUsage},
    {"targetInfinite", words("render MODEL -o OUT.png --distance 3 --target 1,inf,2"),
     "Invalid target '1,inf,2': use three numbers, X,Y,Z.", renderUsage},
    {"distance", words("render MODEL -o OUT.png --distance 0 --target 1,2,3"),
     "Invalid distance '0': use a number above 0.", renderUsage},
};

class WrongCallTest : public ::testing::TestWithParam<WrongCall>
{};

TEST_P(WrongCallTest, SaysWhatIsWrongAndHowItShouldLook)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), "v 0 0 0\nf 1 1 1\n");
    QStringList arguments = GetParam().arguments;
    arguments.replaceInStrings(QStringLiteral("MODEL"), model);
    arguments.replaceInStrings(QStringLiteral("OUT"), files.path(QStringLiteral("out")));

    const OrvRun run = runOrv(arguments);

    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err.toStdString(), StartsWith(std::string("orv: ") + GetParam().message));
    EXPECT_THAT(run.err.toStdString(), HasSubstr(std::string("\n") + GetParam().usage));
    EXPECT_EQ(QDir(files.directory()).entryList(QDir::Files), QStringList(QStringLiteral("m.obj")));
}

INSTANTIATE_TEST_SUITE_P(All, WrongCallTest, ::testing::ValuesIn(wrongCalls),
                         [](const auto &row) { return row.param.name; });

TEST(CommandLineTest, HelpIsPrintedOnStdout)
{
    const OrvRun run = runOrv({QStringLiteral("--help")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out.toStdString(), StartsWith("Usage: orv SUBCOMMAND MODEL [options]\n"));
    for (const char *subcommand : {"\n  render ", "\n  info ", "\n  dump "})
        EXPECT_THAT(run.out.toStdString(), HasSubstr(subcommand));
}

TEST(CommandLineTest, EverySubcommandHasHelp)
{
    for (const QString &subcommand : {render, info, dump}) {
        const OrvRun run = runOrv({subcommand, QStringLiteral("--help")});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_THAT(run.out.toStdString(),
                    StartsWith("Usage: orv " + subcommand.toStdString() + " MODEL "));
        EXPECT_THAT(run.out.toStdString(), HasSubstr("--help"));
    }
}

TEST(CommandLineTest, TellsTheLibrarysVersion)
{
    const OrvRun run = runOrv({QStringLiteral("--version")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(),
              "orv " + Halvard::Orv::ModelVersions::getVersion().toStdString() + "\n");
}

TEST(CommandLineTest, AMissingModelIsTheFilesFault)
{
    const TemporaryModel files;
    const QString missing = files.path(QStringLiteral("missing.obj"));
    const QString picture = files.path(QStringLiteral("out.png"));
    const QList<QStringList> calls = {{render, missing, output, picture},
                                      {info, missing},
                                      {info, missing, QStringLiteral("--json")},
                                      {dump, missing}};
    for (const QStringList &call : calls) {
        const OrvRun run = runOrv(call);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err.toStdString(),
                  "orv: Failed to load OBJ file '" + missing.toStdString() + "': no such file.\n");
    }
    EXPECT_TRUE(QDir(files.directory()).isEmpty());
}

TEST(CommandLineTest, AMissingMaterialLibraryIsTheFilesFault)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), "mtllib none.mtl\nv 0 0 0\n");
    const OrvRun run = runOrv({dump, model});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.toStdString(), "orv: Failed to load MTL file '" +
                                         files.path(QStringLiteral("none.mtl")).toStdString() +
                                         "': no such file.\n");
}

TEST(CommandLineTest, AFileThatWasMeantIsNamed)
{
    const TemporaryModel files;
    const auto failure = [&files](const char *kind, const QString &missing, const QString &meant) {
        return std::string("orv: Failed to load ") + kind + " file '" + missing.toStdString() +
               "': no such file, but there is '" + meant.toStdString() + "'.\n";
    };
    const QString upper = files.write(QStringLiteral("Case/M.OBJ"), "");
    const QString lower = files.path(QStringLiteral("case/m.obj"));
    EXPECT_EQ(runOrv({info, lower}).err.toStdString(), failure("OBJ", lower, upper));

    const QString material = files.write(QStringLiteral("m.material"), "");
    const QString model = files.write(QStringLiteral("m.obj"), "mtllib m.mtl\n");
    EXPECT_EQ(runOrv({dump, model}).err.toStdString(),
              failure("MTL", files.path(QStringLiteral("m.mtl")), material));

    files.write(QStringLiteral("lib/m.mtl"), "");
    const QString other = files.write(QStringLiteral("n.obj"), "mtllib lib\\m.mtl\n");
    EXPECT_EQ(runOrv({dump, other}).err.toStdString(),
              failure("MTL", files.path(QStringLiteral("lib\\m.mtl")),
                      files.path(QStringLiteral("lib/m.mtl"))));
}

TEST(CommandLineTest, ADirectoryIsNoModel)
{
    const TemporaryModel files;
    EXPECT_EQ(runOrv({info, files.directory()}).err.toStdString(),
              "orv: Failed to load OBJ file '" + files.directory().toStdString() +
                  "': is a directory.\n");
}

TEST(CommandLineTest, FileNamesMayHaveAnyCharacters)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("Stra\u00dfe \u6a21 %1 %s.obj"), "");
    const OrvRun run = runOrv({info, model, QStringLiteral("--json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(valueAt(run.json(), "file.name").toString(), model);

    const QString missing = files.path(QStringLiteral("\u00e9%1%s.obj"));
    EXPECT_EQ(runOrv({info, missing}).err.toStdString(),
              "orv: Failed to load OBJ file '" + missing.toStdString() + "': no such file.\n");
}

TEST(CommandLineTest, WithoutOpenGLSaysWhy)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), "v 0 0 0\nf 1 1 1\n");
    const OrvRun run =
        runOrv({dump, model}, {QStringLiteral("__EGL_VENDOR_LIBRARY_FILENAMES=/no/such/driver")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err.toStdString(), StartsWith("orv: No OpenGL"));
}

TEST(CommandLineTest, AFullDiskIsAnError)
{
    const TemporaryModel files;
    const QString model = files.write(QStringLiteral("m.obj"), "v 0 0 0\nf 1 1 1\n");
    for (const QString &command :
         {QStringLiteral("dump"), QStringLiteral("info"), QStringLiteral("info --json")}) {
        QProcess process;
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        process.start(orvProgram(), command.split(QLatin1Char(' ')) + QStringList(model));
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 2);
        EXPECT_EQ(process.readAllStandardError(),
                  "orv: Cannot write to stdout: No space left on device.\n");
    }
}

} // namespace
