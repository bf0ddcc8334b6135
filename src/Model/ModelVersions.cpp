#include <OrvModel/ModelVersions.h>

#include <QtCore/QString>

namespace Halvard::Orv {

namespace {

constexpr char Version[] = ORV_VERSION; // of project() in the top CMakeLists.txt
constexpr char GitHash[] = "";
constexpr char Md5Sum[] = "1";

} // namespace

QString ModelVersions::getVersion()
{
    return QString::fromLatin1(Version);
}
QString ModelVersions::getGitHash()
{
    return QString::fromLatin1(GitHash);
}
QString ModelVersions::getMd5Sum()
{
    return QString::fromLatin1(Md5Sum);
}

QString ModelExportVersions::getVersion()
{
    return QString::fromLatin1(Version);
}
QString ModelExportVersions::getGitHash()
{
    return QString::fromLatin1(GitHash);
}
QString ModelExportVersions::getMd5Sum()
{
    return QString::fromLatin1(Md5Sum);
}

} // namespace Halvard::Orv
