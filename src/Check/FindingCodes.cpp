#include "FindingCodes.h"

namespace Halvard::Orv::Checking {

namespace {

constexpr auto Error = FindingSeverity::Error;
constexpr auto Warning = FindingSeverity::Warning;
constexpr auto Hint = FindingSeverity::Hint;

// In the order of Code.
constexpr CodeTraits Traits[] = {
    {Code::NotAnOBJ, "not-an-obj", Error, false},
    {Code::NoFaces, "no-faces", Warning, false},
    {Code::NoPositions, "no-positions", Error, false},
    {Code::LibraryMissing, "library-missing", Error, true},
    {Code::LibraryLate, "library-late", Error, true},
    {Code::LibraryFurtherNames, "library-further-names", Warning, true},
    {Code::MaterialUndefined, "material-undefined", Error, true},
    {Code::MaterialRedefined, "material-redefined", Warning, false},
    {Code::MaterialEmptyName, "material-empty-name", Error, true},
    {Code::MaterialLineOutside, "material-line-outside", Warning, false},
    {Code::NameCutAtBlank, "name-cut-at-blank", Warning, true},
    {Code::TextureMissing, "texture-missing", Warning, false},
    {Code::TextureUndecodable, "texture-undecodable", Warning, false},
    {Code::TexturePathBackslash, "texture-path-backslash", Warning, true},
    {Code::TexturePathCase, "texture-path-case", Warning, true},
    {Code::TextureOptions, "texture-options", Warning, true},
    {Code::OpacityZero, "opacity-zero", Warning, false},
    {Code::OpacityInverted, "opacity-inverted", Warning, true},
    {Code::FaceUnreadable, "face-unreadable", Error, false},
    {Code::LineContinued, "line-continued", Error, true},
    {Code::FaceTooFewCorners, "face-too-few-corners", Error, false},
    {Code::IndexSelectsNothing, "index-selects-nothing", Warning, false},
    {Code::CornersCoincide, "corners-coincide", Hint, false},
    {Code::FaceWithoutArea, "face-without-area", Hint, false},
    {Code::FaceNotTriangulable, "face-not-triangulable", Error, false},
    {Code::FaceImprecise, "face-imprecise", Warning, false},
    {Code::QuadSplitWrongly, "quad-split-wrongly", Warning, true},
    {Code::FaceNotPlanar, "face-not-planar", Hint, false},
    {Code::NumberUnreadable, "number-unreadable", Warning, false},
    {Code::NumberDecimalComma, "number-decimal-comma", Warning, true},
    {Code::NumberNotFinite, "number-not-finite", Warning, false},
    {Code::ValuesMissing, "values-missing", Warning, false},
    {Code::AttributeBeginsLate, "attribute-begins-late", Warning, true},
    {Code::AttributeAfterFaces, "attribute-after-faces", Error, true},
    {Code::CornerWithoutNormal, "corner-without-normal", Warning, true},
    {Code::CornerWithoutTexCoord, "corner-without-texcoord", Warning, true},
    {Code::NormalsUnused, "normals-unused", Warning, true},
    {Code::NormalWithoutLength, "normal-without-length", Warning, false},
    {Code::NormalsAgainstWinding, "normals-against-winding", Hint, false},
    {Code::KeywordIgnored, "keyword-ignored", Hint, false},
    {Code::VertexColoursIgnored, "vertex-colours-ignored", Hint, false},
    {Code::WeightIgnored, "weight-ignored", Hint, false},
    {Code::PositionsUnused, "positions-unused", Hint, false},
    {Code::Encoding, "encoding", Hint, true},
    {Code::CarriageReturns, "carriage-returns", Error, true},
    {Code::LimitExceeded, "limit-exceeded", Error, false},
};

constexpr bool isInOrder()
{
    int i = 0;
    for (const CodeTraits &traits : Traits) {
        if (static_cast<int>(traits.code) != i++)
            return false;
    }
    return i == CodeCount;
}

static_assert(isInOrder());

} // namespace

const CodeTraits &traitsOf(Code code)
{
    return Traits[static_cast<int>(code)];
}

} // namespace Halvard::Orv::Checking
