#pragma once

#include <QComboBox>

// The combo box of the property table. Choosing an entry closes it at once, so the choice is
// committed without a further click; when shown it opens its list straight away.
class ComboBoxPropertyEditor : public QComboBox
{
    Q_OBJECT
public:
    explicit ComboBoxPropertyEditor(QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
};
