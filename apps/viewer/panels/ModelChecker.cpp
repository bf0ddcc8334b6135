#include "ModelChecker.h"

#include <new>

namespace Halvard::Orv::Viewer {

namespace {

/// Tells every hundredth: events for more would only keep the window busy.
class Teller
{
public:
    Teller(const BackgroundWork::Job &job, std::function<void(double)> tell)
        : _job(job), _tell(std::move(tell))
    {}

    /// \return whether to go on.
    bool operator()(double fraction)
    {
        if (_job.isStopped())
            return false;
        if (fraction >= _next) {
            _next = fraction + 0.01;
            _job.tell([tell = _tell, fraction] { tell(fraction); });
        }
        return true;
    }

private:
    const BackgroundWork::Job &_job;
    std::function<void(double)> _tell;
    double _next = 0;
};

QString noMemory()
{
    return QStringLiteral("there is not enough memory");
}

} // namespace

ModelChecker::ModelChecker(QObject *parent) : QObject(parent) {}

void ModelChecker::check(const QString &path)
{
    _work.start([this, path](const BackgroundWork::Job &job) -> BackgroundWork::End {
        const auto findings = std::make_shared<ModelFindings>();
        QString reason;
        CheckStatus status = CheckStatus::Unreadable;
        CheckOptions options;
        options.progress = Teller(job, [this](double fraction) { emit progressed(fraction); });
        try {
            status = checkModel(path, *findings, reason, options);
        } catch (const std::bad_alloc &) {
            reason = noMemory();
        }
        if (status == CheckStatus::Done)
            return [this, findings] { emit checked(findings); };
        return [this, path, reason] {
            emit failed(tr("'%1' cannot be checked: %2.").arg(path, reason));
        };
    });
}

ModelFixer::ModelFixer(QObject *parent) : QObject(parent) {}

void ModelFixer::fix(const QString &path, const QString &output)
{
    _work.start([this, path, output](const BackgroundWork::Job &job) -> BackgroundWork::End {
        const auto report = std::make_shared<ModelRepairReport>();
        report->input = path;
        report->output = output;
        QString reason;
        RepairStatus status = RepairStatus::Unwritable;
        RepairOptions options;
        options.progress = Teller(job, [this](double fraction) { emit progressed(fraction); });
        try {
            status = repairModel(path, output, report->result, reason, options);
            if (status == RepairStatus::Done) {
                // What is left is for the same file to say, not for what was promised.
                CheckOptions check;
                check.decodeTextures = false;
                check.progress = [&job](double) { return !job.isStopped(); };
                if (checkModel(output, report->left, reason, check) != CheckStatus::Done)
                    status = RepairStatus::Unwritable;
            }
        } catch (const std::bad_alloc &) {
            status = RepairStatus::Unwritable;
            reason = noMemory();
        }
        if (status == RepairStatus::Done)
            return [this, report] { emit fixed(report); };
        return [this, path, reason] {
            emit failed(tr("'%1' cannot be fixed: %2.").arg(path, reason));
        };
    });
}

} // namespace Halvard::Orv::Viewer
