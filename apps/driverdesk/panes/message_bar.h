#pragma once

#include <QFrame>

class QLabel;

/// What a person is to know, above everything else until it is closed. Its text can be selected.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    explicit MessageBar(QWidget *parent = nullptr);

    void showText(const QString &text);
    QString text() const;

private:
    QLabel *m_text;
};
