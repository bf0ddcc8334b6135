#include "CheckReport.h"

#include "JSONWriter.h"

#include <common/FindingLines.h>

#include <algorithm>
#include <vector>

namespace Halvard::Orv::Cli {

namespace {

/// The findings that are shown, in the order of the file. The most severe are chosen first, and
/// among them those further up.
std::vector<const Finding *> chosen(const ModelFindings &model, int most)
{
    std::vector<const Finding *> findings;
    for (const Finding &finding : model.findings)
        findings.push_back(&finding);
    if (most <= 0 || static_cast<size_t>(most) >= findings.size())
        return findings;
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding *a, const Finding *b) { return a->severity < b->severity; });
    findings.resize(static_cast<size_t>(most));
    // They lie in one vector: the order of their addresses is that of the file.
    std::sort(findings.begin(), findings.end());
    return findings;
}

void writeFinding(JSONWriter &json, const Finding &finding)
{
    json.beginObject();
    json.member("code", finding.code);
    json.member("severity", severityName(finding.severity));
    json.member("file", finding.file);
    json.member("line", finding.line);
    json.member("count", finding.count);
    json.member("faces", finding.faces);
    json.member("subject", finding.subject);
    json.member("message", finding.message);
    json.member("consequence", finding.consequence);
    json.member("remedy", finding.remedy);
    json.member("fixable", finding.fixable);
    json.key("corners");
    json.beginArray();
    for (const QVector3D &corner : finding.corners) {
        json.beginArray(JSONWriter::OneLine);
        json.value(corner.x());
        json.value(corner.y());
        json.value(corner.z());
        json.endArray();
    }
    json.endArray();
    json.endObject();
}

} // namespace

QString findingLines(const ModelFindings &model, int most)
{
    QString text;
    const std::vector<const Finding *> findings = chosen(model, most);
    for (const Finding *finding : findings)
        text += Apps::findingLine(*finding) + QLatin1Char('\n');
    const int left = model.findings.size() - static_cast<int>(findings.size());
    if (left > 0)
        text +=
            QStringLiteral("%1: %2 more\n").arg(printableText(model.file), QString::number(left));
    return text;
}

bool writeFindings(QIODevice &device, const QVector<ModelFindings> &models, int most)
{
    JSONWriter json(device);
    json.beginObject();
    json.member("format", 1);
    json.key("models");
    json.beginArray();
    for (const ModelFindings &model : models) {
        json.beginObject();
        json.member("file", model.file);
        json.member("faces", model.faces);
        json.member("facesDrawn", model.facesDrawn);
        json.member("triangles", model.triangles);
        json.key("findings");
        json.beginArray();
        for (const Finding *finding : chosen(model, most))
            writeFinding(json, *finding);
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.finish();
}

} // namespace Halvard::Orv::Cli
