/// \file
/// Which members a record has, and where they lie for a shader.
#pragma once

#include <OrvCore/OrvCoreExport.h>

#include <QtCore/QString>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// \addtogroup records
/// @{

/// The layout of a kind of record: which members a shader expects, of which types, in which order.
///
/// Members are placed by the rules that GLSL has for a struct in an array of a shader storage block
/// with the layout std430, so that the shader side is the same list of members:
///
///     InstanceDataPlan plan("Lamp");                 struct Lamp {           // offset
///     plan.addMember(InstanceDataPlan::Float, "a");      float a;            //  0
///     plan.addMember(InstanceDataPlan::Vec3, "b");       vec3 b;             // 16, not 4
///     plan.addMember(InstanceDataPlan::Texture, "t");    uint t;             // 28
///                                                    };                      // stride 32
///
/// Not to be changed after it was registered: other threads may be reading it.
class ORVCORE_EXPORT InstanceDataPlan
{
public:
    /// What a member holds. The numbers are fixed.
    enum DataType
    {
        /// A 32-bit unsigned integer in the shader: 1 when the record has a texture there, else 0.
        /// The texture itself is bound by the renderer.
        Texture = 0,
        Int = 1,    ///< One 32-bit signed integer.
        IVec2 = 2,  ///< Two of them.
        IVec3 = 3,  ///< Three of them; 16-byte aligned.
        IVec4 = 4,  ///< Four of them.
        UInt = 5,   ///< One 32-bit unsigned integer.
        UVec2 = 6,  ///< Two of them.
        UVec3 = 7,  ///< Three of them; 16-byte aligned.
        UVec4 = 8,  ///< Four of them.
        Double = 9, ///< One 64-bit float.
        DVec2 = 10, ///< Two of them.
        DVec3 = 11, ///< Three of them; 32-byte aligned.
        DVec4 = 12, ///< Four of them.
        Float = 13, ///< One 32-bit float.
        Vec2 = 14,  ///< Two of them.
        Vec3 = 15,  ///< Three of them; 16-byte aligned.
        Vec4 = 16,  ///< Four of them.
        Mat4 = 17,  ///< A 4x4 matrix of 32-bit floats, column after column, 64 bytes.
    };

    /// One member and its place.
    struct Member
    {
        DataType type; ///< What it holds.
        QString name;  ///< Its name, as records and shaders spell it.
        int offset;    ///< Bytes from the start of a record.
    };

    /// A plan without members.
    explicit InstanceDataPlan(const QString &name);

    /// Appends a member. A name may come twice; both places then get the same value.
    /// \param type one of the enumerators; any other number logs a warning and appends nothing.
    /// \param name by which records set it; the shader may spell its own.
    void addMember(DataType type, const QString &name);

    /// The plan's name, by which records refer to it.
    QString name() const { return _name; }

    /// The members in the order in which they were added.
    const QVector<Member> &members() const { return _members; }

    /// Bytes from one record to the next in an array: the size rounded up to the strictest
    /// alignment of a member. 0 for a plan without members.
    int stride() const;

    /// Bytes that a value of `type` takes (12 for Vec3); 0 for a number that is no type.
    static int sizeOf(DataType type);

    /// The std430 alignment of `type` in bytes (16 for Vec3); 1 for a number that is no type.
    static int alignmentOf(DataType type);

private:
    QString _name;
    QVector<Member> _members;
    int _end = 0;       // first byte behind the last member
    int _alignment = 1; // strictest of the members
};

/// @}

} // namespace Halvard::Orv
