/// \file
/// A model as files: what the generator makes, what is loaded, and what is shrunk.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>
#include <string>
#include <vector>

namespace OrvTest {
class TemporaryModel;
}

namespace OrvReference {

struct ModelFile
{
    QString name;
    QByteArray contents;
};

struct ModelFiles
{
    /// The locale's text encoding that the files are read under; empty for the process's own.
    QByteArray localeCodec;
    std::vector<ModelFile> files; ///< The OBJ file first.
};

/// The files on disk, with the locale's encoding set, as long as the object lives.
class WrittenModel
{
public:
    explicit WrittenModel(const ModelFiles &model);
    ~WrittenModel();
    WrittenModel(const WrittenModel &) = delete;
    WrittenModel &operator=(const WrittenModel &) = delete;

    const QString &objPath() const { return _objPath; }

private:
    std::unique_ptr<OrvTest::TemporaryModel> _directory;
    QString _objPath;
};

/// The files as text with everything but plain ASCII escaped the way a C string is.
std::string printable(const ModelFiles &model);

} // namespace OrvReference
