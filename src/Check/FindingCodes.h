/// \file
/// The kinds of findings: their names, how severe they are as a rule, and which of them the
/// repairs mend.
#pragma once

#include <OrvCheck/ModelCheck.h>

namespace Halvard::Orv::Checking {

enum class Code
{
    NotAnOBJ,
    NoFaces,
    NoPositions,
    LibraryMissing,
    LibraryLate,
    LibraryFurtherNames,
    MaterialUndefined,
    MaterialRedefined,
    MaterialEmptyName,
    MaterialLineOutside,
    NameCutAtBlank,
    TextureMissing,
    TextureUndecodable,
    TexturePathBackslash,
    TexturePathCase,
    TextureOptions,
    OpacityZero,
    OpacityInverted,
    FaceUnreadable,
    LineContinued,
    FaceTooFewCorners,
    IndexSelectsNothing,
    CornersCoincide,
    FaceWithoutArea,
    FaceNotTriangulable,
    FaceImprecise,
    QuadSplitWrongly,
    FaceNotPlanar,
    NumberUnreadable,
    NumberDecimalComma,
    NumberNotFinite,
    ValuesMissing,
    AttributeBeginsLate,
    AttributeAfterFaces,
    CornerWithoutNormal,
    CornerWithoutTexCoord,
    NormalsUnused,
    NormalWithoutLength,
    NormalsAgainstWinding,
    KeywordIgnored,
    VertexColoursIgnored,
    WeightIgnored,
    PositionsUnused,
    Encoding,
    CarriageReturns,
    LimitExceeded,
};

constexpr int CodeCount = static_cast<int>(Code::LimitExceeded) + 1;

struct CodeTraits
{
    Code code;
    const char *name;
    /// What it is as a rule; a finding may be less severe where it has no consequence.
    FindingSeverity severity;
    /// Whether repairModel() mends findings of this kind, as a rule.
    bool isFixable;
};

const CodeTraits &traitsOf(Code code);

} // namespace Halvard::Orv::Checking
