#pragma once

#include <QStringList>

/// Lines that are shown again and again in the same place: the whole terminal while it lives, of which the
/// last state stays behind. Rows beyond the screen are reached with the keys for paging.
class LiveScreen
{
public:
    LiveScreen();
    ~LiveScreen();
    LiveScreen(const LiveScreen &) = delete;
    LiveScreen &operator=(const LiveScreen &) = delete;

    /// What is shown: rows may be more than fit between head and foot.
    struct Page {
        QStringList head;
        QStringList rows;
        QStringList foot;
    };
    /// False when nobody reads it.
    bool show(const Page &page);
    /// Whether what is shown has to be shown again, since a key was typed or the terminal has another size.
    bool isOutdated();

private:
    QStringList window(const Page &page);
    void takeKey(const QByteArray &key);

    Page m_page;
    int m_firstRow = 0;
    int m_rowsShown = 0;
    int m_width = 0;
    int m_height = 0;
};
