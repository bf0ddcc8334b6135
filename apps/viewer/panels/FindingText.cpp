#include "FindingText.h"

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QCoreApplication>

namespace Halvard::Orv::Viewer {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("FindingText", text);
}

QString escaped(const QString &text)
{
    return printableText(text).toHtmlEscaped();
}

QString paragraph(const QString &html)
{
    return html.isEmpty() ? QString()
                          : QStringLiteral("<p style=\"margin: 0 0 6px 0\">%1</p>").arg(html);
}

} // namespace

QString findingHtml(const Finding &finding)
{
    QString html = paragraph(QStringLiteral("<b>%1</b>").arg(escaped(finding.message)));
    html += paragraph(escaped(finding.consequence));
    html += paragraph(escaped(finding.remedy));
    if (finding.fixable)
        html += paragraph(tr("\"Fix and Save As ...\" mends this."));
    html += paragraph(
        QStringLiteral("<code>%1:%2</code> [%3]")
            .arg(escaped(finding.file), QString::number(finding.line), escaped(finding.code)));
    return html;
}

} // namespace Halvard::Orv::Viewer
