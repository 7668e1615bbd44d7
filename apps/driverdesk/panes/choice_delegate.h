#pragma once

#include <QStyledItemDelegate>

/// Edits a cell by choosing one of some texts.
class ChoiceDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    ChoiceDelegate(QStringList choices, QObject *parent)
        : QStyledItemDelegate(parent), m_choices(std::move(choices))
    {
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    QStringList m_choices;
};
