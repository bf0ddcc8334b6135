#include "LoadingBar.h"

#include "ProgressBar.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>

namespace Halvard::Orv::Viewer {

LoadingBar::LoadingBar(QWidget *parent)
    : QWidget(parent), _what(new QLabel(this)), _bar(new ProgressBar(this)),
      _cancel(new QToolButton(this))
{
    _bar->setObjectName(QStringLiteral("progress"));
    _bar->setFixedWidth(_bar->maximumWidth());
    _cancel->setObjectName(QStringLiteral("cancel"));
    _cancel->setText(tr("Cancel"));
    _cancel->setToolTip(tr("Stop loading and keep what is shown (Esc)"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_what);
    layout->addWidget(_bar);
    layout->addWidget(_cancel);
    connect(_cancel, &QToolButton::clicked, this, &LoadingBar::cancelled);
    hide();
}

void LoadingBar::tell(const QString &what, double fraction)
{
    _what->setText(what);
    _bar->tell(fraction);
    show();
}

} // namespace Halvard::Orv::Viewer
