// Which lines are read in blocks. That they are read rightly is tested elsewhere;
// this is about speed: what programs write must not take the slow road.
#include "Scanning/FaceRuns.h"
#include "Scanning/ValueRuns.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

/// Text with readable bytes around it.
class Text
{
public:
    explicit Text(const std::string &text)
        : _padded(std::string(margin, '\0') + text + std::string(margin, '\0'))
    {
        _marks.mark(begin(), end());
    }

    const char *begin() const { return _padded.data() + margin; }
    const char *end() const { return _padded.data() + _padded.size() - margin; }
    const DigitMarks &marks() const { return _marks; }

private:
    static constexpr std::size_t margin = 64;
    const std::string _padded;
    DigitMarks _marks;
};

#ifndef ORV_PORTABLE_VECTORS

TEST(PlainLines, ValuesAsProgramsWriteThem)
{
    for (const char *text :
         {"v -0.037830 0.127940 0.004475\nv 1 2 3\n", "v 0.348799 -0.334989 -0.0832331\n",
          "v  1.0  -2.0  3.0\n", "v 1.0 2.0 3.0\r\nv 1 2 3\r\n", "v 1 2 3 \n", "v 1 2 3 \r\n",
          "v 1.0 2.0 3.0 1.0\n", "v 1.0 2.0 3.0 0.5 0.5 0.5\nv 1 2 3\n",
          "v 12345.6789012345 -12345.678901234 0.5\n", "v -3.783000e-02 1.279400e+01 4.475E3\n",
          "v 1e5 -1e-05 0e+000\n", "v 1.19209e-07 -4.37114e-08 1e15\n", "v .5 -.5 -.25e1\n"}) {
        OBJAttribute positions(3);
        const Text lines(text);
        EXPECT_EQ(readPositionLines(lines.begin(), lines.end(), lines.marks(), positions),
                  lines.end())
            << text;
    }
    for (const char *text : {"vt 0.5 0.25\nvt 0 1\n", "vt 0.500000 0.250000 0.000000\r\n"}) {
        OBJAttribute texCoords(2);
        const Text lines(text);
        EXPECT_EQ(readTexCoordLines(lines.begin(), lines.end(), lines.marks(), texCoords),
                  lines.end())
            << text;
    }
}

TEST(PlainLines, FacesAsProgramsWriteThem)
{
    for (const char *text :
         {"f 1 2 3\nf 1 2 3 4\nf 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20\n",
          "f 1/2 2/3 3/4\nf 1/2 2/3 3/4 5/6\n", "f 1//2 2//3 3//4\nf 1//2 2//3 3//4 5//6\n",
          "f 1/2/3 2/3/4 3/4/5\nf 1/2/3 2/3/4 3/4/5 4/5/6 7/8/9\n", "f 1 2 3\r\nf 1 2 3 4\r\n",
          "f 1 2 3 \nf 1 2 3 4 \r\n", "f  1 2 3\n",
          "f 12345678/12345678/12345678 12345678/12345678/12345678 12345678/12345678/12345678\n",
          "f -1 -2 -3\nf -1 -2 -3 -4\nf -1 -2 -3 -4 -5 -6\n", "f -1/-2 -2/-3 -3/-4\n",
          "f -1//-2 -2//-3 -3//-4\r\n", "f -1/-2/-3 -2/-3/-4 -3/-4/-5 -4/-5/-6 \n",
          "f -12345678/-12345678/-12345678 -12345678/-12345678/-12345678 "
          "-12345678/-12345678/-12345678\n",
          // the second corner ends just behind the window that the first one begins
          "f -12345678/-12345678/-1234567 -12345678/-12345678/-12345678 -1/-1/-1\n"}) {
        OBJGeometry geometry;
        const Text lines(text);
        EXPECT_EQ(readFaceLines(lines.begin(), lines.end(), lines.marks(), geometry), lines.end())
            << text;
    }
}

#endif

TEST(PlainLines, OthersArePassedOn)
{
    for (const char *text : {"v 1e 2 3\n",
                             "v 1e+ 2 3\n",
                             "v 1e0005 2 3\n",
                             "v 1e5.5 2 3\n",
                             "v 1e5e5 2 3\n",
                             "v e5 2 3\n",
                             "v .e5 2 3\n",
                             "v -e5 2 3\n",
                             "v 1e16 2 3\n",
                             "v 1e-08 2 3\n",
                             "v\t1 2 3\n",
                             "v 1 2\n",
                             "v +1 2 3\n",
                             "v 1 2 3\r4\n",
                             "vn 1 2 3\n",
                             "v 1   2 3\n",
                             "v 1234567890123456 2 3\n",
                             "v . 2 3\n",
                             "v - 2 3\n",
                             "v 1 2 -.\n"}) {
        OBJAttribute positions(3);
        const Text lines(text);
        EXPECT_EQ(readPositionLines(lines.begin(), lines.end(), lines.marks(), positions),
                  lines.begin())
            << text;
        EXPECT_FALSE(positions.exists());
    }
    for (const char *text :
         {"f 1 2\n", "f -1 2 3\n", "f 1 -2 -3\n", "f -1/1 -2/2 -3/3\n", "f 1/-1 2/-2 3/-3\n",
          "f -1//1 -2//2 -3//3\n", "f - -2 -3\n", "f --1 -2 -3\n", "f -1- -2 -3\n",
          "f -123456789 -1 -2\n", "f 1 2 x\n", "f 1 2 3 # c\n", "f 1/2 2 3/4\n",
          "f 123456789 1 2\n", "f 1 2 3/\n", "f 1 2 3\r4\n", "f\n"}) {
        OBJGeometry geometry;
        const Text lines(text);
        EXPECT_EQ(readFaceLines(lines.begin(), lines.end(), lines.marks(), geometry), lines.begin())
            << text;
        EXPECT_EQ(geometry.faceCount(), 0u);
        EXPECT_EQ(geometry.cornerCount, 0u);
    }
}

} // namespace
} // namespace OrvTest
