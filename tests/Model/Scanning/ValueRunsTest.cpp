// Which lines of numbers are read in blocks. That they are read rightly is tested elsewhere;
// this is about speed: what programs write must take the fast path.
#include "Scanning/ValueRuns.h"

#include "support/MarkedText.h"

#include <gtest/gtest.h>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

#ifndef ORV_PORTABLE_VECTORS

TEST(ValueRuns, HoldLinesAsProgramsWriteThem)
{
    for (const char *text :
         {"v -0.037830 0.127940 0.004475\nv 1 2 3\n", "v 0.348799 -0.334989 -0.0832331\n",
          "v  1.0  -2.0  3.0\n", "v 1.0 2.0 3.0\r\nv 1 2 3\r\n", "v 1 2 3 \n", "v 1 2 3 \r\n",
          "v 1.0 2.0 3.0 1.0\n", "v 1.0 2.0 3.0 0.5 0.5 0.5\nv 1 2 3\n",
          "v 12345.6789012345 -12345.678901234 0.5\n", "v -3.783000e-02 1.279400e+01 4.475E3\n",
          "v 1e5 -1e-05 0e+000\n", "v 1.19209e-07 -4.37114e-08 1e15\n", "v .5 -.5 -.25e1\n"}) {
        OBJAttribute positions(3);
        const MarkedText lines(text);
        EXPECT_EQ(readPositionRun(lines.begin(), lines.end(), lines.marks(), positions),
                  lines.end())
            << text;
    }
    for (const char *text : {"vt 0.5 0.25\nvt 0 1\n", "vt 0.500000 0.250000 0.000000\r\n"}) {
        OBJAttribute texCoords(2);
        const MarkedText lines(text);
        EXPECT_EQ(readTexCoordRun(lines.begin(), lines.end(), lines.marks(), texCoords),
                  lines.end())
            << text;
    }
}

#endif

TEST(ValueRuns, OtherLinesArePassedOn)
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
        const MarkedText lines(text);
        EXPECT_EQ(readPositionRun(lines.begin(), lines.end(), lines.marks(), positions),
                  lines.begin())
            << text;
        EXPECT_FALSE(positions.exists());
    }
}

} // namespace
} // namespace OrvTest
