#pragma once

#include <QScrollArea>

/// Shows a widget whole where there is room for it, and scrolls it where there is not: on a small screen, or
/// with large letters. What gets the keys is scrolled into view.
class ScrolledWidget : public QScrollArea
{
    Q_OBJECT

public:
    /// Owns the widget, and hands the keys to it.
    explicit ScrolledWidget(QWidget *widget, QWidget *parent = nullptr);

    /// That of the widget.
    QSize sizeHint() const override;

private:
    void followKeys();
};

/// Gives a dialog this size, as far as the screen has it.
void resizeWithinScreen(QWidget &dialog, const QSize &size);
