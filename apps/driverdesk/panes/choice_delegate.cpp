#include "apps/driverdesk/panes/choice_delegate.h"

#include <QComboBox>

QWidget *ChoiceDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                      const QModelIndex & /*index*/) const
{
    auto *box = new QComboBox(parent);
    box->addItems(m_choices);
    return box;
}

void ChoiceDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    static_cast<QComboBox *>(editor)->setCurrentText(index.data(Qt::EditRole).toString());
}

void ChoiceDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    model->setData(index, static_cast<QComboBox *>(editor)->currentText(), Qt::EditRole);
}
