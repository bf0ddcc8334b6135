#include "reference/ModelGenerator.h"

#include "reference/NumberTexts.h"

#include <QtGui/QVector3D>

#include <algorithm>

namespace OrvReference {

namespace {

/// Where in the file the lines of an attribute start.
enum class Start
{
    Never,
    First,
    Later,
    AfterFaces
};

Start anyStart(Dice &dice)
{
    const Start starts[] = {Start::Never, Start::Never, Start::First,     Start::First,
                            Start::First, Start::Later, Start::AfterFaces};
    // Values without an index make the whole model invalid: seldom.
    const Start start = oneOf(dice, starts);
    return start == Start::AfterFaces && !dice.oneIn(4) ? Start::First : start;
}

/// Where a shape stands in space.
struct Placement
{
    QVector3D x;
    QVector3D y;
    double scale;
    double offset[3];
};

Placement anyPlacement(Dice &dice)
{
    const auto part = [&dice] { return static_cast<float>(dice.real(-1.0, 1.0)); };
    Placement placement;
    if (dice.oneIn(2)) {
        placement.x = QVector3D(1.0f, 0.0f, 0.0f);
        placement.y = dice.oneIn(2) ? QVector3D(0.0f, 1.0f, 0.0f) : QVector3D(0.0f, 0.0f, 1.0f);
    } else {
        placement.x = QVector3D{part(), part(), part()}.normalized();
        placement.y = QVector3D::crossProduct(placement.x, QVector3D{part(), part(), part()});
    }
    const double scales[] = {1.0, 1.0, 1.0, 10.0, 100.0, 1e-2, 1e-3, 2e-4, 1e-6, 1e5};
    const double offsets[] = {0.0, 0.0, 0.0, 1.0, 10.0, 1e3, 1e5, 1e7};
    placement.scale = oneOf(dice, scales);
    const double distance = oneOf(dice, offsets);
    for (double &coordinate : placement.offset)
        coordinate = distance * dice.real(-1.0, 1.0);
    return placement;
}

std::vector<QVector2D> anyPolygon(Dice &dice)
{
    using namespace OrvTest;
    int count = dice.between(3, 12);
    if (dice.oneIn(300))
        count = dice.between(60, 500);
    else if (dice.oneIn(30))
        count = dice.between(13, 60);
    std::vector<QVector2D> points;
    switch (dice.below(7)) {
    case 0:
        points = convexRing(dice, count).points;
        break;
    case 1:
        points = starRing(dice, count).points;
        break;
    case 2:
        points = latticeStarRing(dice, count).points;
        break;
    case 3:
        points = combRing(std::max(1, count / 3)).points;
        break;
    case 4:
        points = spiralRing(std::max(4, count)).points;
        break;
    default:
        points = anyRing(dice, count).points;
        break;
    }
    return dice.oneIn(4) ? reversed(points) : points;
}

struct Point
{
    double x;
    double y;
    double z;
};

class ModelText
{
public:
    /// \param materials the names that libraries define.
    ModelText(Dice &dice, const Oddness &oddness, const QStringList &materials)
        : _dice(dice), _oddness(oddness), _materials(materials), _style(anyNumberStyle(dice)),
          _normals(anyStart(dice)), _coordinates(anyStart(dice)),
          _negative(dice.oneIn(4) ? dice.between(10, 100) : 0)
    {}

    QStringList lines(int chunks, const QStringList &libraries);

private:
    void addLibraries(const QStringList &libraries);
    void addOddLine();
    void addMaterialSelection();
    void addValues(const char *keyword, int components, int &count);
    void addVertex(const Point &point);
    void addPolygon();
    void addGrid();
    void addSoup();
    void addFaces();
    void addFace(const std::vector<int> &vertices);
    void addShape();
    QString number(double value);
    QString index(int number, int count);
    QString corner(int vertex);

    Dice &_dice;
    const Oddness _oddness;
    const QStringList _materials;
    const NumberStyle _style;
    const Start _normals;
    const Start _coordinates;
    const int _negative; ///< Chances in a hundred of an index to count backwards.
    QStringList _lines;
    int _numV = 0;
    int _numVn = 0;
    int _numVt = 0;
};

QString ModelText::number(double value)
{
    return chance(_dice, _oddness.numbers) ? oddNumber(_dice) : numberText(value, _style);
}

void ModelText::addVertex(const Point &point)
{
    QString line = QStringLiteral("v");
    for (const double coordinate : {point.x, point.y, point.z})
        line += QLatin1Char(' ') + number(coordinate);
    _lines << line;
    ++_numV;
}

void ModelText::addValues(const char *keyword, int components, int &count)
{
    for (int lines = _dice.between(1, 4); lines > 0; --lines) {
        QString line = QString::fromLatin1(keyword);
        for (int i = 0; i < components; ++i)
            line += QLatin1Char(' ') + number(_dice.below(5) * 0.25 - 0.5);
        _lines << line;
        ++count;
    }
}

QString ModelText::index(int number, int count)
{
    return QString::number(chance(_dice, _negative) ? number - count - 1 : number);
}

QString ModelText::corner(int vertex)
{
    if (chance(_dice, _oddness.indices))
        return oddIndex(_dice);
    QString text = index(vertex, _numV);
    // Ahead of the first value lines an index may refer to what follows.
    const bool hasCoordinate = _coordinates != Start::Never && !_dice.oneIn(20);
    const bool hasNormal = _normals != Start::Never && !_dice.oneIn(20);
    if (hasCoordinate || hasNormal)
        text += QLatin1Char('/');
    if (hasCoordinate)
        text += index(_dice.between(1, std::max(1, _numVt)), _numVt);
    if (hasNormal)
        text += QLatin1Char('/') + index(_dice.between(1, std::max(1, _numVn)), _numVn);
    return text;
}

void ModelText::addFace(const std::vector<int> &vertices)
{
    QString line = QStringLiteral("f");
    for (const int vertex : vertices)
        line += QLatin1Char(' ') + corner(vertex);
    if (chance(_dice, _oddness.lines))
        line += QStringLiteral(" # comment");
    _lines << line;
}

void ModelText::addPolygon()
{
    const Placement at = anyPlacement(_dice);
    const int first = _numV + 1;
    const std::vector<QVector2D> polygon = anyPolygon(_dice);
    const double bend = _dice.oneIn(3) ? _dice.real(0.0, 0.3) : 0.0;
    const auto coordinate = [&at, bend, this](const QVector2D &point, int axis) {
        const float sum = at.x[axis] * point.x() + at.y[axis] * point.y();
        const double bent = static_cast<double>(sum) + bend * _dice.real(-1.0, 1.0);
        return bent * at.scale + at.offset[axis];
    };
    std::vector<int> vertices;
    for (const QVector2D &point : polygon) {
        addVertex({coordinate(point, 0), coordinate(point, 1), coordinate(point, 2)});
        vertices.push_back(first + static_cast<int>(vertices.size()));
    }
    const int turn = _dice.below(static_cast<int>(vertices.size()));
    std::rotate(vertices.begin(), vertices.begin() + turn, vertices.end());
    addFace(vertices);
    if (_dice.oneIn(5))
        addFace({vertices.rbegin(), vertices.rend()});
}

/// A surface whose faces share their vertices.
void ModelText::addGrid()
{
    const int width = _dice.between(1, 4);
    const int height = _dice.between(1, 3);
    const int first = _numV + 1;
    for (int y = 0; y <= height; ++y) {
        for (int x = 0; x <= width; ++x)
            addVertex({double(x), double(y), _dice.oneIn(2) ? 0.0 : _dice.real(-1.0, 1.0)});
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int a = first + y * (width + 1) + x;
            const int d = a + width + 1;
            if (_dice.oneIn(3)) {
                addFace({a, a + 1, d + 1});
                addFace({a, d + 1, d});
            } else {
                addFace({a, a + 1, d + 1, d});
            }
        }
    }
}

/// Vertices of which some are equal, and faces over them at random.
void ModelText::addSoup()
{
    for (int count = _dice.between(2, 8); count > 0; --count)
        addVertex({double(_dice.between(-1, 1)), double(_dice.between(-1, 1)),
                   double(_dice.between(0, 1))});
    addFaces();
}

void ModelText::addFaces()
{
    for (int count = _dice.between(1, 4); count > 0; --count) {
        std::vector<int> vertices;
        for (int corners = _dice.oneIn(6) ? _dice.below(3) : _dice.between(3, 8); corners > 0;
             --corners)
            vertices.push_back(_dice.between(1, std::max(3, _numV)));
        addFace(vertices);
    }
}

void ModelText::addShape()
{
    switch (_dice.below(8)) {
    case 0:
    case 1:
    case 2:
        return addPolygon();
    case 3:
    case 4:
        return addGrid();
    case 5:
    case 6:
        return addSoup();
    default:
        return addFaces();
    }
}

void ModelText::addOddLine()
{
    const char *const odd[] = {"",
                               "   ",
                               "# v 1 2 3",
                               "#",
                               "#f 1 2 3",
                               "o thing",
                               "g a b",
                               "s off",
                               "l 1 2",
                               "p 1",
                               "vp 1 2",
                               "V 1 2 3",
                               "F 1 2 3",
                               "usemtl",
                               "f",
                               "f #",
                               "f # 1",
                               "f 1",
                               "f 1 2",
                               "f 1 2 #3",
                               "f 1 2 3#",
                               "f 1 2 3 # 4",
                               "f 1 2 3 x",
                               "v",
                               "v 1",
                               "v 1 2",
                               "v 1 2 3 4",
                               "v x y z",
                               "v 1 2 3#",
                               "vn",
                               "vn 0 0 1",
                               "vt",
                               "vt 0.5",
                               "vt 1 2 3",
                               "vt x",
                               "v# 1 2 3",
                               "usemtl a b",
                               "usemtl #x",
                               "usemtl <default>",
                               "fo 1 2 3",
                               "v1 2 3",
                               "f1 2 3",
                               "f 1/1 2/2 3/3",
                               "f 1//1 2//1 3//1",
                               "f -1 -2 -3",
                               "f 1 1 1",
                               "f 0 0 0",
                               "curv2 1 2 3"};
    const QString line = QString::fromUtf8(oneOf(_dice, odd));
    _lines << line;
    _numV += line.startsWith(QLatin1String("v ")) ? 1 : 0;
}

void ModelText::addLibraries(const QStringList &libraries)
{
    for (const QString &library : libraries)
        _lines << QStringLiteral("mtllib ") + library;
    if (_dice.oneIn(60)) {
        const char *const missing[] = {"missing.mtl", "", "/nowhere/x.mtl", ".", "a\u00fc.mtl"};
        _lines << QStringLiteral("mtllib ") + QString::fromUtf8(oneOf(_dice, missing));
    }
}

/// Faces under a name that nothing defines are not drawn: mostly a name that something does.
void ModelText::addMaterialSelection()
{
    QString name = QStringLiteral("<default>");
    if (_dice.oneIn(12))
        name = materialName(_dice);
    else if (!_materials.isEmpty())
        name = _materials[_dice.below(_materials.size())];
    _lines << QStringLiteral("usemtl ") + name;
}

QStringList ModelText::lines(int chunks, const QStringList &libraries)
{
    const int librariesAt = _dice.oneIn(3) ? _dice.below(chunks + 1) : 0;
    const int normalsFrom = _normals == Start::Later ? _dice.between(1, chunks) : 0;
    const int coordinatesFrom = _coordinates == Start::Later ? _dice.between(1, chunks) : 0;
    const auto isDue = [](Start start, int from, int chunk) {
        return (start == Start::First || start == Start::Later) && chunk >= from;
    };
    for (int chunk = 0; chunk < chunks; ++chunk) {
        if (chunk == librariesAt)
            addLibraries(libraries);
        if (isDue(_normals, normalsFrom, chunk))
            addValues("vn", 3, _numVn);
        if (isDue(_coordinates, coordinatesFrom, chunk))
            addValues("vt", _dice.between(2, 3), _numVt);
        if (_dice.oneIn(2))
            addMaterialSelection();
        addShape();
        if (chance(_dice, _oddness.lines))
            addOddLine();
    }
    if (_normals == Start::AfterFaces)
        addValues("vn", 3, _numVn);
    if (_coordinates == Start::AfterFaces)
        addValues("vt", 2, _numVt);
    return _lines;
}

/// More vertices than 16-bit indices can tell apart.
QStringList hugeModel(Dice &dice)
{
    const int size = dice.between(250, 270);
    QStringList lines;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            lines << QStringLiteral("v %1 %2 %3").arg(x).arg(y).arg(dice.below(3));
    }
    for (int y = 1; y < size; ++y) {
        for (int x = 1; x < size; ++x) {
            const int a = (y - 1) * size + x;
            lines << QStringLiteral("f %1 %2 %3 %4")
                         .arg(a)
                         .arg(a + 1)
                         .arg(a + size + 1)
                         .arg(a + size);
        }
    }
    return lines;
}

QByteArray anyLocaleCodec(Dice &dice)
{
    const char *const others[] = {"ISO-8859-1", "windows-1251", "Shift_JIS", "GB18030",
                                  "ISO-8859-15"};
    switch (dice.below(4)) {
    case 0:
    case 1:
        return {};
    case 2:
        return "UTF-8";
    default:
        return dice.oneIn(3) ? QByteArray(oneOf(dice, others)) : QByteArray("UTF-8");
    }
}

} // namespace

ModelFiles generateModel(quint32 seed)
{
    Dice dice(seed);
    ModelFiles model;
    model.localeCodec = anyLocaleCodec(dice);
    model.files.push_back({QStringLiteral("model.obj"), {}});
    if (seed % 5000 == 4999) {
        model.files.front().contents = fileContents(dice, hugeModel(dice), {});
        return model;
    }

    const char *const names[] = {"a.mtl", "b.mtl", "sub/c.mtl"};
    QStringList libraries;
    QStringList materials;
    for (int count = dice.below(4); count > 0; --count) {
        const QString name = QString::fromUtf8(names[libraries.size()]);
        const Oddness oddness = anyOddness(dice);
        const QStringList lines = materialLines(dice, oddness);
        model.files.push_back({name, fileContents(dice, lines, oddness)});
        libraries << name;
        for (const QString &line : lines.filter(QStringLiteral("newmtl ")))
            materials << line.mid(7);
    }
    const Oddness oddness = anyOddness(dice);
    int chunks = dice.between(1, 4);
    if (dice.oneIn(300))
        chunks = dice.between(100, 400);
    else if (dice.oneIn(50))
        chunks = dice.between(10, 40);
    ModelText text(dice, oddness, materials);
    model.files.front().contents = fileContents(dice, text.lines(chunks, libraries), oddness);
    return model;
}

} // namespace OrvReference
