#include "reference/ModelFiles.h"

#include "support/TemporaryModel.h"

#include <QtCore/QTextCodec>

#include <cstdio>

namespace OrvReference {

namespace {

std::string escaped(char character)
{
    if (character == '\\')
        return "\\\\";
    if (character == '\n')
        return "\\n\n";
    if (character >= ' ' && character <= '~')
        return std::string(1, character);
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(character));
    return text;
}

} // namespace

WrittenModel::WrittenModel(const ModelFiles &model)
    : _directory(std::make_unique<OrvTest::TemporaryModel>())
{
    // Before writing: file names are encoded by it too.
    if (!model.localeCodec.isEmpty())
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(model.localeCodec));
    for (const ModelFile &file : model.files)
        _directory->write(file.name, file.contents);
    _objPath = _directory->path(model.files.front().name);
}

WrittenModel::~WrittenModel()
{
    _directory.reset();
    QTextCodec::setCodecForLocale(nullptr);
}

std::string printable(const ModelFiles &model)
{
    std::string text = "locale's encoding: ";
    text += model.localeCodec.isEmpty() ? "as it is" : model.localeCodec.toStdString();
    for (const ModelFile &file : model.files) {
        text += "\n--- " + file.name.toStdString() + " ---\n";
        for (const char character : file.contents)
            text += escaped(character);
    }
    return text + "\n---\n";
}

} // namespace OrvReference
