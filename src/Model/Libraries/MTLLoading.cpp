// Material libraries: one material group per "newmtl" section.
#include <OrvModel/InstanceDataPlans.h>
#include <OrvModel/MTLReader.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include "Lanes/FloatingPointState.h"
#include "Libraries/InputFile.h"
#include "Libraries/MTLLoading.h"
#include "Materials/PlanRegistration.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <exception>
#include <new>

namespace Halvard::Orv {

namespace {

/// What the builder has thrown. It may be of the caller's allocator, and passes through.
struct BuildersException
{
    std::exception_ptr thrown;
};

/// The section being read: from its "newmtl" to the next one or the end.
class MaterialSection
{
public:
    explicit MaterialSection(ModelBuilder &builder) : _builder(builder) {}

    void open(const QString &name)
    {
        const float opaque = 1.0f;
        _material.clear();
        setNumber("d", opaque);
        _name = name;
    }

    /// Makes a group of the open section, unless there is one of that name: the
    /// first definition of a material is the one that counts.
    void close()
    {
        if (_name.isNull() || _builder.hasMaterialGroup(_name))
            return;
        try {
            _builder.createMaterialGroup(_name, _material, -1, 0);
        } catch (...) {
            throw BuildersException{std::current_exception()};
        }
    }

    void setColor(const char *member, const MTLReader::Floats &color)
    {
        _material.set(QLatin1String(member), color, sizeof color);
    }

    void setNumber(const char *member, float number)
    {
        _material.set(QLatin1String(member), &number, sizeof number);
    }

    void setMap(const char *member, const QString &path)
    {
        _material.setTexture(QLatin1String(member), path);
    }

private:
    ModelBuilder &_builder;
    InstanceData _material{QStringLiteral("OBJMaterial")};
    QString _name; // null while no section is open
};

void takeLine(const MTLReader &reader, MaterialSection &section)
{
    switch (reader.getLineType()) {
    case MTLReader::LINE_NEWMTL:
        section.close();
        section.open(reader.getNewmtlName());
        break;
    case MTLReader::LINE_KA:
        section.setColor("Ka", reader.getKa());
        break;
    case MTLReader::LINE_KD:
        section.setColor("Kd", reader.getKd());
        break;
    case MTLReader::LINE_KS:
        section.setColor("Ks", reader.getKs());
        break;
    case MTLReader::LINE_NS:
        section.setNumber("Ns", reader.getNs());
        break;
    case MTLReader::LINE_D:
        section.setNumber("d", reader.getD());
        break;
    case MTLReader::LINE_MAP_KD:
        section.setMap("map_Kd", reader.getMapKdPath());
        break;
    case MTLReader::LINE_MAP_KS:
        section.setMap("map_Ks", reader.getMapKsPath());
        break;
    case MTLReader::LINE_MAP_KA:
        section.setMap("map_Ka", reader.getMapKaPath());
        break;
    case MTLReader::LINE_MAP_NS:
        section.setMap("map_Ns", reader.getMapNsPath());
        break;
    default:
        break;
    }
}

void readMTLLines(QIODevice &device, const QString &fileName, ModelBuilder &builder)
{
    registerPlanOnce<registerOBJMaterial>(); // of the materials' records
    QTextStream stream(&device);
    MTLReader reader(stream, true);
    reader.setBaseDir(QFileInfo(fileName).dir().absolutePath());
    MaterialSection section(builder);
    while (reader.valid()) { // the first pass only moves to the first line
        if (reader.parseLine())
            takeLine(reader, section);
        reader.next();
    }
    section.close();
}

} // namespace

void loadMaterials(QIODevice &device, const QString &fileName, ModelBuilder &builder)
{
    try {
        readMTLLines(device, fileName, builder);
    } catch (const BuildersException &exception) {
        std::rethrow_exception(exception.thrown);
    }
}

bool loadMaterialsOfFile(const QString &fileName, ModelBuilder &builder, QString *reason)
{
    const FloatingPointState state;
    try {
        QFile file(fileName);
        if (!openInputFile(file, reason))
            return false;
        readMTLLines(file, fileName, builder);
        return true;
    } catch (const BuildersException &exception) {
        std::rethrow_exception(exception.thrown);
    } catch (const std::bad_alloc &) {
        qWarning("'%s' is not loaded: there is not enough memory for it", qUtf8Printable(fileName));
        if (reason)
            *reason = QStringLiteral("not enough memory");
        return false;
    }
}

bool loadMaterialsFromMTLFile(const QString &fileName, ModelBuilder &builder)
{
    return loadMaterialsOfFile(fileName, builder, nullptr);
}

} // namespace Halvard::Orv
