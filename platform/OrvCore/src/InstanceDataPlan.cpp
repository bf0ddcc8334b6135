#include <OrvCore/InstanceDataPlan.h>

#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv {

namespace {

struct Layout
{
    int size;
    int alignment;
};

// By number of InstanceDataPlan::DataType. A scalar of N bytes is aligned to N, a vector of two to
// 2N, of three and of four to 4N; a matrix is an array of its columns.
constexpr Layout Layouts[] = {
    {4, 4},                                 // Texture: an unsigned integer
    {4, 4},   {8, 8},   {12, 16}, {16, 16}, // Int, IVec2 ... IVec4
    {4, 4},   {8, 8},   {12, 16}, {16, 16}, // UInt, UVec2 ... UVec4
    {8, 8},   {16, 16}, {24, 32}, {32, 32}, // Double, DVec2 ... DVec4
    {4, 4},   {8, 8},   {12, 16}, {16, 16}, // Float, Vec2 ... Vec4
    {64, 16},                               // Mat4: four columns of four
};

constexpr int TypeCount = sizeof(Layouts) / sizeof(Layouts[0]);
static_assert(TypeCount == InstanceDataPlan::Mat4 + 1, "one layout per type");

bool isType(InstanceDataPlan::DataType type)
{
    return static_cast<unsigned int>(type) < static_cast<unsigned int>(TypeCount);
}

int roundedUp(int value, int alignment)
{
    return (value + alignment - 1) / alignment * alignment;
}

} // namespace

InstanceDataPlan::InstanceDataPlan(const QString &name) : _name(name) {}

void InstanceDataPlan::addMember(DataType type, const QString &name)
{
    if (!isType(type)) {
        qWarning("InstanceDataPlan \"%s\": member \"%s\" has the unknown type %d",
                 qUtf8Printable(_name), qUtf8Printable(name), static_cast<int>(type));
        return;
    }
    const int offset = roundedUp(_end, alignmentOf(type));
    _members.append({type, name, offset});
    _end = offset + sizeOf(type);
    _alignment = std::max(_alignment, alignmentOf(type));
}

int InstanceDataPlan::stride() const
{
    return roundedUp(_end, _alignment);
}

int InstanceDataPlan::sizeOf(DataType type)
{
    return isType(type) ? Layouts[type].size : 0;
}

int InstanceDataPlan::alignmentOf(DataType type)
{
    return isType(type) ? Layouts[type].alignment : 1;
}

} // namespace Halvard::Orv
