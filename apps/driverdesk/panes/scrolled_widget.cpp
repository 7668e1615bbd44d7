#include "apps/driverdesk/panes/scrolled_widget.h"

#include <QApplication>
#include <QScreen>

namespace
{

const double ShareOfScreen = 0.9; // leaves room for frame and title

} // namespace

ScrolledWidget::ScrolledWidget(QWidget *widget, QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setWidget(widget);
    setFocusPolicy(Qt::NoFocus);
    setFocusProxy(widget);
    // Later, when what has come to the front has its place.
    connect(qApp, &QApplication::focusChanged, this, &ScrolledWidget::followKeys, Qt::QueuedConnection);
}

// Not below a pressed mouse, which would then point at something else.
void ScrolledWidget::followKeys()
{
    QWidget *focus = QApplication::focusWidget();
    if (focus != nullptr && isAncestorOf(focus) && QApplication::mouseButtons() == Qt::NoButton)
        ensureWidgetVisible(focus);
}

QSize ScrolledWidget::sizeHint() const
{
    return widget()->sizeHint();
}

void resizeWithinScreen(QWidget &dialog, const QSize &size)
{
    dialog.resize(size.boundedTo(dialog.screen()->availableSize() * ShareOfScreen));
}
