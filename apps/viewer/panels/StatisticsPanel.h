/// \file
/// What the model holds, and what became of it.
#pragma once

#include <common/ModelSummary.h>

#include <QtCore/QSet>
#include <QtWidgets/QTreeWidget>

namespace Halvard::Orv::Viewer {

/// What `orv info` says, in sections that can be folded.
class StatisticsPanel : public QTreeWidget
{
    Q_OBJECT

public:
    explicit StatisticsPanel(QWidget *parent = nullptr);

    void setSummary(const Apps::ModelSummary &summary);

    QSize sizeHint() const override;

private:
    void addSection(const Apps::SummarySection &section);
    void copy() const;

    Apps::ModelSummary _summary;
    QSet<QString> _folded; // by heading; they stay so for the next model
};

} // namespace Halvard::Orv::Viewer
