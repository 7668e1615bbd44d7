#include "apps/driverdesk/panes/message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

MessageBar::MessageBar(QWidget *parent) : QFrame(parent), m_text(new QLabel(this))
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    m_text->setForegroundRole(QPalette::ToolTipText);
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size, size));
    auto *close = new QToolButton(this);
    close->setText(tr("Close"));
    close->setShortcut(Qt::Key_Escape);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto *row = new QHBoxLayout(this);
    row->addWidget(icon);
    row->addWidget(m_text, 1);
    row->addWidget(close);
    hide();
}

void MessageBar::showText(const QString &text)
{
    m_text->setText(text);
    show();
}

QString MessageBar::text() const
{
    return isVisibleTo(parentWidget()) ? m_text->text() : QString();
}
