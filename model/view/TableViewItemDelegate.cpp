#include "model/view/TableViewItemDelegate.h"

#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/view/ComboBoxPropertyEditor.h"

#include <QDebug>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>

namespace
{
// A length spin box that takes every number typed: one past a limit is brought to that limit
// when committed instead of being refused digit by digit (which turned 300 into 30).
class LengthSpinBox : public QSpinBox
{
public:
    using QSpinBox::QSpinBox;

protected:
    QValidator::State validate(QString& input, int& pos) const override
    {
        const QValidator::State state = QSpinBox::validate(input, pos);
        bool ok = false;
        typed(input, &ok);
        return state == QValidator::Invalid && ok ? QValidator::Intermediate : state;
    }
    void fixup(QString& input) const override
    {
        bool ok = false;
        const int number = typed(input, &ok);
        if (ok)
            input = prefix() + textFromValue(qBound(minimum(), number, maximum())) + suffix();
        else
            QSpinBox::fixup(input);
    }

private:
    int typed(QString text, bool* ok) const
    {
        if (text.startsWith(prefix()))
            text.remove(0, prefix().size());
        if (text.endsWith(suffix()))
            text.chop(suffix().size());
        text = text.trimmed();
        return text.toInt(ok);
    }
};
} // namespace

TableViewItemDelegate::TableViewItemDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

const CWidget* TableViewItemDelegate::componentAt(const QModelIndex& index)
{
    const auto* model = qobject_cast<const CWidgetModel*>(index.model());
    if (!model || !index.isValid())
        return nullptr;
    return model->widget(index);
}

void TableViewItemDelegate::commitAndClose(QWidget* editor)
{
    emit commitData(editor);
    emit closeEditor(editor);
}

QWidget* TableViewItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                             const QModelIndex& index) const
{
    Q_UNUSED(option)
    const CWidget* component = componentAt(index);
    if (!component || index.column() == PropName)
        return nullptr;
    const EditorRule rule = component->editorRule(index.column());
    QWidget* editor = nullptr;
    switch (rule.kind) {
    case EditorRule::Combo: {
        auto* combo = new ComboBoxPropertyEditor(parent);
        // A choice commits at once, also where closing the editor brings no focus change that
        // would tell the view: the value goes to the view before the editor closes itself.
        auto* self = const_cast<TableViewItemDelegate*>(this);
        disconnect(combo, &QComboBox::currentIndexChanged, combo, &QWidget::close);
        connect(combo, &QComboBox::currentIndexChanged, self,
                [self, combo]() { self->commitAndClose(combo); });
        connect(combo, &QComboBox::currentIndexChanged, combo, &QWidget::close);
        editor = combo;
        break;
    }
    case EditorRule::Spin: {
        auto* spin = new LengthSpinBox(parent);
        spin->setRange(rule.minimum, rule.maximum);
        spin->setSuffix(rule.suffix.isEmpty() ? QStringLiteral(" ft") : rule.suffix);
        editor = spin;
        break;
    }
    case EditorRule::ReadOnlyText: {
        auto* line = new QLineEdit(parent);
        line->setReadOnly(true);
        editor = line;
        break;
    }
    case EditorRule::None:
        return nullptr;
    }
    // Written once per editor, not each time it is filled.
    for (const QString& line : rule.debugLines)
        qDebug().noquote() << line;
    editor->installEventFilter(const_cast<TableViewItemDelegate*>(this));
    editor->setFocusPolicy(Qt::StrongFocus);
    return editor;
}

void TableViewItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const CWidget* component = componentAt(index);
    if (!component)
        return;
    const EditorRule rule = component->editorRule(index.column());
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        // Filling the list is not a choice.
        const QSignalBlocker block(combo);
        combo->clear();
        for (const QString& choice : rule.choices)
            combo->addItem(QIcon(), choice);
        combo->setCurrentIndex(rule.currentIndex);
    } else if (auto* spin = qobject_cast<QSpinBox*>(editor)) {
        spin->setRange(rule.minimum, rule.maximum);
        if (!rule.suffix.isEmpty())
            spin->setSuffix(rule.suffix);
        spin->setValue(rule.value);
    } else if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        line->setText(rule.text);
    }
}

void TableViewItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                         const QModelIndex& index) const
{
    QVariant value;
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        if (combo->currentIndex() < 0)
            return; // nothing chosen: a value the list does not offer stays as it is
        value = combo->currentText();
    } else if (auto* spin = qobject_cast<QSpinBox*>(editor)) {
        spin->interpretText();
        value = spin->value();
    }
    model->setData(index, value, Qt::EditRole);
}
