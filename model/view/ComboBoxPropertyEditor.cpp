#include "model/view/ComboBoxPropertyEditor.h"

ComboBoxPropertyEditor::ComboBoxPropertyEditor(QWidget* parent) : QComboBox(parent)
{
    connect(this, &QComboBox::currentIndexChanged, this, &QWidget::close);
}

void ComboBoxPropertyEditor::showEvent(QShowEvent* event)
{
    QComboBox::showEvent(event);
    showPopup();
}
