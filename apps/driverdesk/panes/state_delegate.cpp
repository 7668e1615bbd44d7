#include "apps/driverdesk/panes/state_delegate.h"

#include "apps/driverdesk/models/point_view.h"

namespace
{

// Grey, and still readable: a third of the way from the text to what is behind it.
QColor between(const QColor &text, const QColor &base)
{
    const auto mixed = [](int from, int to) { return (2 * from + to) / 3; };
    return {mixed(text.red(), base.red()), mixed(text.green(), base.green()),
            mixed(text.blue(), base.blue())};
}

} // namespace

void StateDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (static_cast<PointState>(index.data(m_stateRole).toInt()) == PointState::Live)
        return;
    option->font.setItalic(true);
    option->palette.setColor(QPalette::Text, between(option->palette.color(QPalette::Text),
                                                     option->palette.color(QPalette::Base)));
}
