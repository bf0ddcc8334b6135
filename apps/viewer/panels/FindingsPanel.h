/// \file
/// What is wrong with the model.
#pragma once

#include "ModelChecker.h"

#include <QtGui/QVector3D>
#include <QtWidgets/QWidget>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QLabel;
class QLineEdit;
class QMenu;
class QModelIndex;
class QPushButton;
class QSplitter;
class QTextBrowser;
class QToolButton;
class QTreeView;

namespace Halvard::Orv::Viewer {

class FindingsFilter;
class FindingsModel;
class ProgressBar;

/// The findings on a model in a list, with what follows from the chosen one, and a button that
/// mends the model. The check runs beside the window, as soon as the panel is seen.
class FindingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FindingsPanel(QWidget *parent = nullptr);
    ~FindingsPanel() override;

    /// Checks another model, or the same again; then what was chosen stays chosen.
    /// \param isShown whether the window shows it: the corners of faces of another one are
    ///        nowhere to be seen.
    void setModelFile(const QString &path, bool isShown);

    /// Chooses the finding that is listed after the chosen one, or before it; comes round.
    void chooseNext();
    void choosePrevious();

    /// Mends the model into another file, and says what was changed.
    void fixInto(const QString &output);

    QSize sizeHint() const override;

    FindingsModel &findings() { return *_findings; }
    /// Of a check or a repair.
    bool isBusy() const { return _checker.isBusy() || _fixer.isBusy() || _isWaiting; }

signals:
    /// \param corners to mark, of the first face that the chosen finding is about; empty where it
    ///        is about no face, or none is chosen.
    void cornersChosen(const std::vector<QVector3D> &corners);
    /// Somebody wants to see them from near by; there are some.
    void flightWanted(const std::vector<QVector3D> &corners);
    /// The mended model is wanted.
    void openRequested(const QString &path);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeTools();
    QWidget *makeStatus();
    QWidget *makeList();
    void makeMenu();
    void connectWork();
    void check();
    void show(const std::shared_ptr<const ModelFindings> &findings);
    void relist(const std::function<void()> &change);
    void showChosen();
    void flyToChosen();
    std::vector<QVector3D> chosenCorners() const;
    void tell(const QString &text, bool isWorking);
    void tellResult();
    void choose(int step);
    void chooseRow(int row);
    void askForOutput();
    void showReport(const std::shared_ptr<const ModelRepairReport> &report);
    void warn(const QString &sentence);
    const Finding *chosen() const;
    QString chosenPlace() const;

    ModelChecker _checker;
    ModelFixer _fixer;
    FindingsModel *_findings;
    FindingsFilter *_filter;

    std::array<QToolButton *, 3> _severities; // by severity
    QLineEdit *_text;
    QPushButton *_fix;
    QLabel *_status;
    ProgressBar *_progress;
    QPushButton *_stop;
    QSplitter *_splitter;
    QTreeView *_list;
    QTextBrowser *_details;

    QString _path;
    bool _isShown = false;
    bool _isWaiting = false; // until the panel is seen
    bool _isChecked = false;
};

} // namespace Halvard::Orv::Viewer
