/// \file
/// What a repair did.
#pragma once

#include "ModelChecker.h"

#include <QtWidgets/QDialog>

#include <memory>

namespace Halvard::Orv::Viewer {

/// Lists the changes, says what is left, and offers to open the result: accepted() asks for that.
class FixReportDialog : public QDialog
{
    Q_OBJECT

public:
    FixReportDialog(std::shared_ptr<const ModelRepairReport> report, QWidget *parent);

    const ModelRepairReport &report() const { return *_report; }

private:
    QString summary() const;
    QString changesAsText() const;
    QWidget *makeList();

    std::shared_ptr<const ModelRepairReport> _report;
};

} // namespace Halvard::Orv::Viewer
