// Whether the model of a picture is lit from above:  lit PICTURE.png
//
// Of each way down through the model that is long enough, the upper end is compared with the lower.
// Where normals point to the wrong side, it is the darker one.
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <cstdio>

namespace {

constexpr int ShortestWay = 40;

/// Pixels from the outline inwards, where neighbours are no longer mixed in.
constexpr int Inwards = 5;

int brightness(const QImage &picture, int x, int y)
{
    return qGray(picture.pixel(x, y));
}

} // namespace

int main(int, char **arguments)
{
    const QImage picture(QString::fromLocal8Bit(arguments[1]));
    if (picture.isNull())
        return 2;
    int lighterAbove = 0;
    int darkerAbove = 0;
    for (int x = 0; x < picture.width(); ++x) {
        // A background may change from line to line, but not along one.
        int first = -1;
        int last = -1;
        for (int y = 0; y < picture.height(); ++y) {
            if (picture.pixel(x, y) == picture.pixel(0, y))
                continue;
            first = first < 0 ? y : first;
            last = y;
        }
        if (first < 0 || last - first < ShortestWay)
            continue;
        const int above = brightness(picture, x, first + Inwards);
        const int below = brightness(picture, x, last - Inwards);
        lighterAbove += above > below;
        darkerAbove += above < below;
    }
    std::printf("%d columns are lighter above, %d below\n", lighterAbove, darkerAbove);
    return lighterAbove >= 100 && lighterAbove > 9 * darkerAbove ? 0 : 1;
}
