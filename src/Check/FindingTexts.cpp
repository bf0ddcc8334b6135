#include "FindingTexts.h"

namespace Halvard::Orv::Checking {

namespace {

/// Longest name in a message.
constexpr int MostNameCharacters = 200;

QString text(const char *words)
{
    return QString::fromUtf8(words);
}

/// A name in quotes, cut where it is long.
QString quoted(const QString &name)
{
    const QString shown = name.size() > MostNameCharacters
                              ? name.left(MostNameCharacters) + QStringLiteral("...")
                              : name;
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

/// "1 face", "6 faces"; the plural is the word with an "s" where none is given.
QString counted(qint64 count, const char *word, const char *words = nullptr)
{
    const QString plural = words ? text(words) : text(word) + QLatin1Char('s');
    return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? text(word) : plural);
}

/// "has" or "have".
QString verb(qint64 count, const char *singular, const char *plural)
{
    return text(count == 1 ? singular : plural);
}

QString attributeName(const QString &keyword)
{
    if (keyword == QLatin1String("v"))
        return text("position");
    return keyword == QLatin1String("vn") ? text("normal") : text("texture coordinate");
}

/// "6 faces are not drawn."
QString notDrawn(qint64 faces)
{
    return faces == 0 ? text("No face is lost by it.")
                      : QStringLiteral("%1 %2 not drawn.")
                            .arg(counted(faces, "face"), verb(faces, "is", "are"));
}

FindingTexts ofFile(const Tally &t)
{
    switch (t.code) {
    case Code::NotAnOBJ:
        return {text("This is no Wavefront OBJ file: no line begins with a keyword of one."),
                text("The loader passes over every line and draws nothing."),
                text("Export the model as Wavefront OBJ.")};
    case Code::NoFaces:
        return {text("The file has no faces."),
                text("Nothing is drawn: points, lines and free-form surfaces are passed over."),
                text("Export the model as polygons.")};
    case Code::NoPositions:
        return {text("The file has faces but no \"v\" line."),
                text("Nothing is drawn. ") + notDrawn(t.faces),
                text("Export the model anew, with its vertices.")};
    case Code::Encoding:
        if (t.detail == QLatin1String("unmarked"))
            return {text("The file looks like UTF-16 without a byte-order mark."),
                    text("It is read as single bytes, no keyword is found, and nothing is drawn."),
                    text("Save it as UTF-8.")};
        if (t.subject.contains(QChar::ReplacementCharacter))
            return {QStringLiteral("The name %1 has bytes that are not in the encoding of text.")
                        .arg(quoted(t.subject)),
                    text("They read as replacement characters: names that differ in nothing else "
                         "are one."),
                    text("Save the file as UTF-8.")};
        return {QStringLiteral("The file is in %1.").arg(t.subject),
                text("This loader reads it, but more slowly; others may not read it at all."),
                text("Save it as UTF-8.")};
    case Code::CarriageReturns:
        return {text("Text follows a carriage return within a line."),
                text("Lines end at line feeds only: what follows the return belongs to the line "
                     "before it, and is lost behind a comment or a name."),
                text("End lines with line feeds.")};
    case Code::LimitExceeded:
        return {QStringLiteral("The file holds too much for one model: %1.").arg(t.detail),
                text("It is not loaded. ") + notDrawn(t.faces),
                text("Split the model into several files.")};
    default:
        return {};
    }
}

/// A path as it can be written in a library, where a blank would end it.
QString withoutBlanks(QString path)
{
    for (QChar &character : path) {
        if (character.isSpace())
            character = QLatin1Char('_');
    }
    return path;
}

/// A texture whose file has the whole name. Files of users are not renamed for them.
FindingTexts ofCutTexture(const Tally &t)
{
    const QString better = quoted(withoutBlanks(t.subject));
    return {
        QStringLiteral("The name of the texture %1 ends at its first blank: rename the image to "
                       "%2, and write that here.")
            .arg(quoted(t.subject), better),
        QStringLiteral("It reads %1. The material is drawn without the texture.")
            .arg(quoted(t.detail)),
        QStringLiteral("Rename the image to %1, and write that name on the line.").arg(better)};
}

FindingTexts ofLibrary(const Tally &t)
{
    const QString name = quoted(t.subject);
    switch (t.code) {
    case Code::LibraryMissing:
        if (t.subject.isEmpty())
            return {text("The line names no material library."),
                    text("The whole model fails to load. ") + notDrawn(t.faces),
                    text("Name the library, or take the line out.")};
        if (t.isRefused)
            return {QStringLiteral("The material library %1 lies outside of what may be read.")
                        .arg(name),
                    text("It is not opened, and the whole model fails to load. ") +
                        notDrawn(t.faces),
                    text("Allow a directory that holds it to be read, or take the line out.")};
        if (!t.detail.isEmpty())
            return {QStringLiteral("The material library %1 cannot be opened, but there is %2.")
                        .arg(name, quoted(t.detail)),
                    text("The whole model fails to load. ") + notDrawn(t.faces),
                    QStringLiteral("Write %1.").arg(quoted(t.detail))};
        return {QStringLiteral("The material library %1 cannot be opened.").arg(name),
                text("The whole model fails to load. ") + notDrawn(t.faces),
                text("Put the library beside the model, or take the line out.")};
    case Code::LibraryLate:
        return {QStringLiteral("The material library %1 comes after faces that use its materials.")
                    .arg(name),
                text("Faces before the line have an undefined material. ") + notDrawn(t.faces),
                text("Move the line before the first face.")};
    case Code::LibraryFurtherNames:
        return {QStringLiteral("Only the first library of %1 is read.").arg(name),
                text("Materials of the others are not defined."),
                text("Name each library in a line of its own.")};
    case Code::NameCutAtBlank:
        if (!t.isFixable && !t.isOfMany) // only textures are not
            return ofCutTexture(t);
        return {QStringLiteral("The name %1 ends at its first blank: it reads %2.")
                    .arg(name, quoted(t.detail)),
                t.severity == FindingSeverity::Hint
                    ? text("It does no harm: no other name reads the same.")
                    : text("Something else is selected than is written, or nothing."),
                text("Write an underscore for each blank, wherever the name stands.")};
    default:
        return {};
    }
}

FindingTexts ofMaterial(const Tally &t)
{
    const QString name = quoted(t.subject);
    switch (t.code) {
    case Code::MaterialUndefined:
        return {QStringLiteral("No library defines the material %1.").arg(name), notDrawn(t.faces),
                text("Define the material, or select another.")};
    case Code::MaterialRedefined:
        if (t.detail.isEmpty())
            return {QStringLiteral("The material %1 is the loader's own, and is not defined anew.")
                        .arg(name),
                    text("This definition is passed over."), text("Give it another name.")};
        return {QStringLiteral("The material %1 is defined already.").arg(name),
                text("The first definition counts; this one is passed over."),
                text("Give one of the two another name, or take one out.")};
    case Code::MaterialEmptyName:
        if (t.severity == FindingSeverity::Warning)
            return {text("The material has no name."),
                    text("The line is passed over: what follows changes the material before it, if "
                         "there is one."),
                    text("Give the material a name.")};
        return {text("The line selects a material without a name."), notDrawn(t.faces),
                text("Name a material.")};
    case Code::MaterialLineOutside:
        return {QStringLiteral("A %1 line comes before the first \"newmtl\".").arg(name),
                text("It belongs to no material and is passed over."),
                text("Move it behind the \"newmtl\" line of its material.")};
    case Code::OpacityZero:
        return {QStringLiteral("The material %1 has an opacity of 0.").arg(name),
                text("What is drawn with it is invisible where transparency is drawn."),
                text("Write \"d 1\" if it is meant to be seen.")};
    case Code::OpacityInverted:
        return {QStringLiteral("The material %1 gives a transparency, \"Tr %2\", and no \"d\".")
                    .arg(name, t.detail),
                text("\"Tr\" is not read: the material is opaque."),
                t.severity == FindingSeverity::Hint
                    ? text("Some programs write \"Tr 1\" for opaque. If it is meant to be "
                           "transparent, write \"d\" with one minus that number.")
                    : text("Write \"d\" with one minus that number.")};
    default:
        return {};
    }
}

FindingTexts ofTexture(const Tally &t)
{
    const QString name = quoted(t.subject);
    const QString without = text("The material is drawn without the texture.");
    const QString better = withoutBlanks(t.detail);
    const QString instead =
        better == t.detail
            ? QStringLiteral("Write %1.").arg(quoted(t.detail))
            : QStringLiteral("Rename the image to %1, and write that.").arg(quoted(better));
    switch (t.code) {
    case Code::TextureMissing:
        return {QStringLiteral("There is no texture %1.").arg(name), without,
                text("Put the file there, or take the line out.")};
    case Code::TextureUndecodable:
        if (t.detail == QLatin1String("depth"))
            return {QStringLiteral("The texture %1 has fewer than 32 bits per pixel.").arg(name),
                    text("LoadTexture() refuses it; prepareTexture() and orv convert it."),
                    text("Save the image in full colour.")};
        return {QStringLiteral("The texture %1 is no image that can be read.").arg(name), without,
                text("Save the image as PNG or JPEG.")};
    case Code::TexturePathBackslash:
        return {QStringLiteral("The texture %1 is written with a backslash; there is %2.")
                    .arg(name, quoted(t.detail)),
                without, instead};
    case Code::TexturePathCase:
        return {QStringLiteral("There is no texture %1, but %2.").arg(name, quoted(t.detail)),
                without, instead};
    case Code::TextureOptions:
        return {QStringLiteral("The texture has options: %1.").arg(name),
                text("Options are not understood: the first is taken for the path. ") + without,
                instead};
    default:
        return {};
    }
}

FindingTexts ofFace(const Tally &t)
{
    const QString faces = counted(t.count, "face");
    switch (t.code) {
    case Code::FaceUnreadable:
        return {QStringLiteral("%1 cannot be read: %2 is no corner.").arg(faces, quoted(t.detail)),
                notDrawn(t.faces), text("Write corners as v, v/vt, v//vn or v/vt/vn.")};
    case Code::LineContinued:
        return {QStringLiteral("%1 %2 in a backslash, to go on in the next one.")
                    .arg(counted(t.count, "line"), verb(t.count, "ends", "end")),
                t.file > 0 ? text("Lines are not continued: this one is passed over, or read up to "
                                  "there.")
                : t.subject == QLatin1String("f")
                    ? text("Lines are not continued: the face cannot be read. ") + notDrawn(t.faces)
                    : text("Lines are not continued: the numbers that are missing read as 0."),
                text("Join the lines.")};
    case Code::FaceTooFewCorners:
        return {QStringLiteral("%1 %2 fewer than three corners.")
                    .arg(faces, verb(t.count, "has", "have")),
                notDrawn(t.faces), text("Take them out, or write lines as \"l\".")};
    case Code::CornersCoincide:
        return {QStringLiteral("%1 %2 neighbouring corners at the same place.")
                    .arg(faces, verb(t.count, "has", "have")),
                text("A triangle of such a face has no area and is not seen."),
                text("Take the repeated corner out.")};
    case Code::FaceWithoutArea:
        return {QStringLiteral("%1 %2 no area.").arg(faces, verb(t.count, "has", "have")),
                t.faces > 0 ? notDrawn(t.faces) : text("They are drawn, and cannot be seen."),
                text("Take them out.")};
    case Code::FaceNotTriangulable:
        return {
            QStringLiteral("%1 cannot be cut into triangles: the ring crosses or repeats itself, "
                           "or is too small for the numbers.")
                .arg(faces),
            notDrawn(t.faces), text("Cut the face into triangles.")};
    case Code::FaceImprecise:
        return {QStringLiteral("%1 %2 turned over: far from the origin the normal is lost in "
                               "rounding.")
                    .arg(faces, verb(t.count, "is", "are")),
                text("The triangles run the wrong way round."),
                text("Move the model to the origin.")};
    case Code::QuadSplitWrongly:
        return {QStringLiteral("%1 of four corners %2 split along the diagonal that leaves the "
                               "face.")
                    .arg(faces, verb(t.count, "is", "are")),
                text("Quads are always split from the second to the fourth corner: a triangle lies "
                     "outside the face."),
                text("Begin the face with its second corner, or write two triangles.")};
    case Code::FaceNotPlanar:
        return {QStringLiteral("%1 %2 corners far from a common plane.")
                    .arg(faces, verb(t.count, "has", "have")),
                text("The shape depends on how the face is cut into triangles."),
                text("Write triangles.")};
    default:
        return {};
    }
}

FindingTexts ofNumber(const Tally &t)
{
    const QString lines =
        QStringLiteral("%1 line%2").arg(quoted(t.subject), t.count == 1 ? QString() : text("s"));
    const QString inLines = QStringLiteral("%1 %2").arg(t.count).arg(lines);
    const QString zero = t.file == 0 ? text("The number reads as 0.")
                                     : text("The line is passed over, or read up to there.");
    switch (t.code) {
    case Code::NumberUnreadable:
        return {QStringLiteral("%1 %2 something that is no number: %3.")
                    .arg(inLines, verb(t.count, "holds", "hold"), quoted(t.detail)),
                zero, text("Write a number.")};
    case Code::NumberDecimalComma:
        return {QStringLiteral("%1 %2 a decimal comma: %3.")
                    .arg(inLines, verb(t.count, "holds", "hold"), quoted(t.detail)),
                zero, text("Write a point for the comma.")};
    case Code::NumberNotFinite:
        return {QStringLiteral("%1 %2 a number that is not finite: %3.")
                    .arg(inLines, verb(t.count, "holds", "hold"), quoted(t.detail)),
                text("It is taken as it is; what is drawn with it cannot be foreseen."),
                text("Write a finite number.")};
    case Code::ValuesMissing:
        return {
            QStringLiteral("%1 %2 too few values.").arg(inLines, verb(t.count, "holds", "hold")),
            t.file == 0 ? text("Those that are missing read as 0.")
                        : text("The line is passed over."),
            text("Write all values.")};
    case Code::NormalWithoutLength:
        return {QStringLiteral("%1 %2 no length.")
                    .arg(counted(t.count, "normal"), verb(t.count, "has", "have")),
                text("What is lit with it stays dark."), text("Write normals of length 1.")};
    case Code::VertexColoursIgnored:
        return {QStringLiteral("%1 %2 a colour.")
                    .arg(counted(t.count, "vertex", "vertices"), verb(t.count, "has", "have")),
                text("Colours of vertices are not read."),
                text("Use materials or a texture instead.")};
    case Code::WeightIgnored:
        return {QStringLiteral("%1 %2 a weight other than 1.")
                    .arg(counted(t.count, "vertex", "vertices"), verb(t.count, "has", "have")),
                text("Weights are not read: the position is taken as it is."),
                text("Divide the position by its weight.")};
    case Code::PositionsUnused:
        return {QStringLiteral("No face uses %1.").arg(counted(t.count, "position")),
                text("They take time and memory while the file is read; nothing of them is drawn."),
                text("Take them out.")};
    default:
        return {};
    }
}

FindingTexts ofIndices(const Tally &t)
{
    const QString attribute = attributeName(t.subject);
    switch (t.code) {
    case Code::IndexSelectsNothing:
        if (t.detail == QLatin1String("none"))
            return {QStringLiteral("%1 a %2, and the file has none.")
                        .arg(counted(t.count, "corner selects", "corners select"), attribute),
                    QStringLiteral("The model goes without %1s.").arg(attribute),
                    QStringLiteral("Write \"%1\" lines, or leave the index out.").arg(t.subject)};
        return {QStringLiteral("%1 a %2 that is not in the file.")
                    .arg(counted(t.count, "corner selects", "corners select"), attribute),
                t.subject == QLatin1String("v") ? text("The corner lies at the origin.")
                                                : text("The corner gets zeros."),
                text("Correct the index.")};
    case Code::AttributeBeginsLate:
        return {QStringLiteral("The first \"%1\" line comes after %2 of faces.")
                    .arg(t.subject, counted(t.count, "corner")),
                QStringLiteral("Indices shift: the first corners take the %1s that later faces "
                               "select, and the last ones get zeros.")
                    .arg(attribute),
                QStringLiteral("Move a \"%1\" line before the first face.").arg(t.subject)};
    case Code::AttributeAfterFaces:
        return {QStringLiteral("All \"%1\" lines come after the last face.").arg(t.subject),
                text("The whole model comes out empty. ") + notDrawn(t.faces),
                QStringLiteral("Move the \"%1\" lines before the first face, or take them out.")
                    .arg(t.subject)};
    case Code::CornerWithoutNormal:
        return {QStringLiteral("%1 no normal, while others have.")
                    .arg(counted(t.count, "corner has", "corners have")),
                text("It gets a normal of zeros and stays dark: normals are generated only for a "
                     "file without any."),
                text("Write normals for all corners, or for none.")};
    case Code::CornerWithoutTexCoord:
        return {QStringLiteral("%1 no texture coordinate, while others have.")
                    .arg(counted(t.count, "corner has", "corners have")),
                text("It takes the texture's first corner."),
                text("Write texture coordinates for all corners of textured faces.")};
    case Code::NormalsUnused:
        return {QStringLiteral("The file has %1, and no face uses one.")
                    .arg(counted(t.count, "normal")),
                text("All corners get a normal of zeros and stay dark: normals are generated only "
                     "for a file without any."),
                text("Take the \"vn\" lines out, or write their indices into the faces.")};
    case Code::NormalsAgainstWinding:
        return {QStringLiteral("%1 normals that point to the side from which its corners run "
                               "clockwise.")
                    .arg(counted(t.count, "face has", "faces have")),
                text("A renderer that leaves out back faces shows the other side than the normals "
                     "mean."),
                text("Turn the order of the corners round, or the normals.")};
    default:
        return {};
    }
}

FindingTexts ofKeyword(const Tally &t)
{
    if (t.file == 0 && t.subject == QLatin1String("s"))
        return {text("The file turns smoothing off and has no normals."),
                text("Smoothing groups are not read: normals are generated across all edges."),
                text("Write normals.")};
    if (t.subject.isEmpty())
        return {QStringLiteral("%1 with further unknown keywords.")
                    .arg(counted(t.count, "line begins", "lines begin")),
                text("They are passed over."), text("Take them out.")};
    if (t.detail == QLatin1String("known") || t.file > 0)
        return {QStringLiteral("%1 with %2, which is not read.")
                    .arg(counted(t.count, "line begins", "lines begin"), quoted(t.subject)),
                text("What it says is not drawn."),
                t.file > 0 ? text("Take it out, or do without.")
                           : text("Export the model as polygons.")};
    return {QStringLiteral("%1 with %2, which is no keyword.")
                .arg(counted(t.count, "line begins", "lines begin"), quoted(t.subject)),
            text("They are passed over."), text("Correct the keyword, or take the line out.")};
}

} // namespace

FindingTexts textsOf(const Tally &tally)
{
    if (tally.isOfMany)
        return {QStringLiteral("%1 of this kind, beyond those that are told one by one.")
                    .arg(counted(tally.count, "further occurrence")),
                notDrawn(tally.faces), text("Mend those that are told first.")};
    if (tally.code == Code::KeywordIgnored)
        return ofKeyword(tally);
    for (const auto family :
         {ofFile, ofLibrary, ofMaterial, ofTexture, ofFace, ofNumber, ofIndices}) {
        FindingTexts texts = family(tally);
        if (!texts.message.isNull())
            return texts;
    }
    return {};
}

} // namespace Halvard::Orv::Checking
