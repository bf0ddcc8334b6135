#include "OBJLinePath.h"

#include "Libraries/MaterialLibraries.h"
#include "Reports/CurrentReport.h"
#include "Reports/UndrawnFaces.h"
#include "Threads/Work.h"

#include <OrvModel/ModelBuilder.h>
#include <OrvModel/OBJReader.h>

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QIODevice>
#include <QtCore/QMap>
#include <QtCore/QTextStream>
#include <QtCore/QVarLengthArray>

namespace Halvard::Orv {

namespace {

class OBJLinePath
{
public:
    OBJLinePath(ModelBuilder &builder, MaterialLibraries &libraries)
        : _builder(builder), _libraries(libraries)
    {}

    OBJScanOutcome read(QTextStream &stream, const QString &baseDir, QString &detail,
                        const OBJScanLimits &limits, Work *work)
    {
        const StageTimer timer(&PreparationReport::Stages::read);
        OBJReader reader(stream);
        reader.setBaseDir(baseDir);
        while (reader.valid()) {
            if (reader.parseLine() && !takeLine(reader)) {
                detail = reader.getMtllibPath();
                return OBJScanOutcome::LibraryMissing;
            }
            detail = _counts.excess(limits);
            if (!detail.isNull())
                return OBJScanOutcome::LimitExceeded;
            reader.next();
            if (work && ++_lines % LinesBetweenReports == 0)
                work->report(WorkStage::Reading, fractionRead(*stream.device()));
        }
        fillInMissingAttributes();
        reportUndrawnFaces();
        return OBJScanOutcome::Finished;
    }

private:
    static constexpr quint64 LinesBetweenReports = 1024;

    /// Nobody knows how much a pipe holds.
    static double fractionRead(const QIODevice &device)
    {
        return device.isSequential() || device.size() == 0
                   ? 0.0
                   : static_cast<double>(device.pos()) / static_cast<double>(device.size());
    }

    bool takeLine(const OBJReader &reader)
    {
        switch (reader.getLineType()) {
        case OBJReader::LINE_V:
            addValue(_positions, 3, reader.getV());
            _counts.positions += 3;
            break;
        case OBJReader::LINE_VN:
            addValue(_normals, 3, reader.getVn());
            _counts.normals += 3;
            break;
        case OBJReader::LINE_VT:
            addValue(_texCoords, 2, reader.getVt());
            _counts.texCoords += 2;
            break;
        case OBJReader::LINE_F:
            addFace(reader);
            break;
        case OBJReader::LINE_MTLLIB:
            return _libraries.load(reader.getMtllibPath());
        case OBJReader::LINE_USEMTL:
            _currentMaterial = reader.getUsemtlName();
            break;
        default:
            break;
        }
        return true;
    }

    void addValue(const QString &attribute, int components, const float *values)
    {
        if (!_builder.hasVertexAttribute(attribute))
            _builder.createVertexAttribute(attribute, components, GL_FLOAT, 0, 0);
        _builder.addValuesToVertexAttribute(attribute, static_cast<unsigned long>(components),
                                            values, GL_FLOAT);
        countValue(attribute);
    }

    /// An attribute has indices only for the faces read after its first value:
    /// earlier faces add none.
    void addFace(const OBJReader &reader)
    {
        const auto count = static_cast<unsigned>(reader.getNumVertices());
        _builder.addVertexCountsToFaces(1, &count);
        addIndices(reader, _positions, &OBJReader::Vertex::v);
        addIndices(reader, _normals, &OBJReader::Vertex::vn);
        addIndices(reader, _texCoords, &OBJReader::Vertex::vt);
        const auto number = static_cast<unsigned>(_counts.faces);
        _builder.addFacesToMaterialGroup(_currentMaterial, 1, &number, QString());
        countFace(count);
        ++_counts.faces;
        _counts.corners += count;
    }

    void addIndices(const OBJReader &reader, const QString &attribute,
                    int OBJReader::Vertex::*component)
    {
        if (!_builder.hasVertexAttribute(attribute))
            return;
        _indices.resize(0);
        for (int i = 0; i < reader.getNumVertices(); ++i)
            _indices.append(static_cast<unsigned>(reader.getVertex(i).*component));
        _builder.addIndicesToVertexAttribute(attribute, static_cast<unsigned long>(_indices.size()),
                                             _indices.constData());
    }

    /// Asks for normals where the file has none. The texture coordinates that are
    /// offered in their place have no effect without the attribute: a file
    /// without any gives a model without the attribute.
    void fillInMissingAttributes()
    {
        if (!_builder.hasVertexAttribute(_normals))
            _builder.generateNormals(_normals);
        if (!_builder.hasVertexAttribute(_texCoords)) {
            const float origin[2] = {0.0f, 0.0f};
            const unsigned zero = 0;
            _builder.addValuesToVertexAttribute(_texCoords, 2, origin, GL_FLOAT);
            for (quint64 corner = 0; corner < _counts.corners; ++corner)
                _builder.addIndicesToVertexAttribute(_texCoords, 1, &zero);
        }
    }

    void countValue(const QString &attribute)
    {
        if (!_report)
            return;
        quint64 &counter = attribute == _positions ? _report->positions
                           : attribute == _normals ? _report->normals
                                                   : _report->texCoords;
        ++counter;
    }

    void countFace(unsigned corners)
    {
        if (!_report)
            return;
        ++_report->faces;
        _report->corners += corners;
        ++_report->facesByCornerCount[corners];
        if (!_builder.hasMaterialGroup(_currentMaterial))
            _withoutMaterial[_currentMaterial].add(_counts.faces, 1);
    }

    void reportUndrawnFaces()
    {
        for (auto it = _withoutMaterial.cbegin(); it != _withoutMaterial.cend(); ++it)
            _report->facesNotDrawn.append(
                {PreparationReport::Reason::MaterialNotDefined, it.key(), it->first, it->count});
    }

    ModelBuilder &_builder;
    MaterialLibraries &_libraries;
    PreparationReport *_report = currentReport();
    const QString _positions = QStringLiteral("va_Vertex");
    const QString _normals = QStringLiteral("va_Normal");
    const QString _texCoords = QStringLiteral("va_TexCoord");
    QString _currentMaterial = QStringLiteral("<default>");
    quint64 _lines = 0;
    OBJCounts _counts;
    /// By name; filled only for a report. Ordered: names can be made up that collide in a hash table.
    QMap<QString, UndrawnFaces> _withoutMaterial;
    QVarLengthArray<unsigned, 64> _indices; // one face's, kept for its memory
};

} // namespace

OBJScanOutcome readOBJLines(QTextStream &stream, const QString &baseDir, ModelBuilder &builder,
                            MaterialLibraries &libraries, QString &detail,
                            const OBJScanLimits &limits, Work *work)
{
    return OBJLinePath(builder, libraries).read(stream, baseDir, detail, limits, work);
}

} // namespace Halvard::Orv
