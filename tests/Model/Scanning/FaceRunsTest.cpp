// Which lines of corners are read in blocks. That they are read rightly is tested elsewhere;
// this is about speed: what programs write must take the fast path.
#include "Scanning/FaceRuns.h"

#include "support/MarkedText.h"

#include <gtest/gtest.h>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

#ifndef ORV_PORTABLE_VECTORS

TEST(FaceRuns, HoldLinesAsProgramsWriteThem)
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
        const MarkedText lines(text);
        EXPECT_EQ(readFaceRun(lines.begin(), lines.end(), lines.marks(), geometry), lines.end())
            << text;
    }
}

#endif

TEST(FaceRuns, OtherLinesArePassedOn)
{
    for (const char *text :
         {"f 1 2\n", "f -1 2 3\n", "f 1 -2 -3\n", "f -1/1 -2/2 -3/3\n", "f 1/-1 2/-2 3/-3\n",
          "f -1//1 -2//2 -3//3\n", "f - -2 -3\n", "f --1 -2 -3\n", "f -1- -2 -3\n",
          "f -123456789 -1 -2\n", "f 1 2 x\n", "f 1 2 3 # c\n", "f 1/2 2 3/4\n",
          "f 123456789 1 2\n", "f 1 2 3/\n", "f 1 2 3\r4\n", "f\n"}) {
        OBJGeometry geometry;
        const MarkedText lines(text);
        EXPECT_EQ(readFaceRun(lines.begin(), lines.end(), lines.marks(), geometry), lines.begin())
            << text;
        EXPECT_EQ(geometry.faceCount(), 0u);
        EXPECT_EQ(geometry.cornerCount, 0u);
    }
}

} // namespace
} // namespace OrvTest
