/// \file
/// Checks and mends model files beside the window.
#pragma once

#include "BackgroundWork.h"

#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>

#include <memory>

namespace Halvard::Orv::Viewer {

/// Checks one model at a time: the next check ends that before it. Each one ends with checked() or
/// failed(), unless it is stopped.
class ModelChecker : public QObject
{
    Q_OBJECT

public:
    explicit ModelChecker(QObject *parent = nullptr);

    void check(const QString &path);
    void stop() { _work.stop(); }
    bool isBusy() const { return _work.isBusy(); }

signals:
    /// \param fraction from 0 to 1.
    void progressed(double fraction);
    void checked(const std::shared_ptr<const Halvard::Orv::ModelFindings> &findings);
    /// \param sentence says why the file cannot be checked.
    void failed(const QString &sentence);

private:
    BackgroundWork _work;
};

/// What a repair did, and what it left.
struct ModelRepairReport
{
    QString input;
    QString output;
    RepairResult result;
    ModelFindings left; ///< those on the output
};

/// Mends one model at a time. Each repair ends with fixed() or failed(), unless it is stopped, and
/// then nothing is written.
class ModelFixer : public QObject
{
    Q_OBJECT

public:
    explicit ModelFixer(QObject *parent = nullptr);

    void fix(const QString &path, const QString &output);
    void stop() { _work.stop(); }
    bool isBusy() const { return _work.isBusy(); }

signals:
    void progressed(double fraction);
    void fixed(const std::shared_ptr<const Halvard::Orv::Viewer::ModelRepairReport> &report);
    void failed(const QString &sentence);

private:
    BackgroundWork _work;
};

} // namespace Halvard::Orv::Viewer
