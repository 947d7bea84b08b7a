#include "app/Prompter.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace
{
// The context lupdate files these texts under: they are all said by DialogPrompter's members.
QString tr(const char* text)
{
    return QCoreApplication::translate("DialogPrompter", text);
}
} // namespace

QString DialogPrompter::getOpenFileName(QWidget* parent, const QString& caption, const QString& dir,
                                        const QString& filter)
{
    return QFileDialog::getOpenFileName(parent, caption, dir, filter);
}

QString DialogPrompter::getSaveFileName(QWidget* parent, const QString& caption, const QString& proposed,
                                        const QString& filter)
{
    return QFileDialog::getSaveFileName(parent, caption, proposed, filter);
}

bool DialogPrompter::askClearConfiguration(QWidget* parent)
{
    QMessageBox box(parent);
    box.setText(tr("This operation will clear the current configuration"));
    box.setInformativeText(tr("Do you want to continue?"));
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    // Anything but an explicit No lets the change go on.
    return box.exec() != QMessageBox::No;
}

Prompter::SaveChoice DialogPrompter::askSaveChanges(QWidget* parent, const QString& displayName)
{
    QMessageBox box(parent);
    box.setText(tr("Do you want to save the changes you made to the configuration '%1'?").arg(displayName));
    box.setInformativeText(tr("Your changes will be lost if you don't save them."));
    box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Save);
    box.setEscapeButton(QMessageBox::Cancel);
    box.button(QMessageBox::Discard)->setShortcut(QKeySequence(Qt::Key_D));
    const int result = box.exec();
    switch (result) {
    case QMessageBox::Save:
        return SaveChoice::Save;
    case QMessageBox::Discard:
        return SaveChoice::Discard;
    case QMessageBox::Cancel:
        return SaveChoice::Cancel;
    default:
        qDebug() << "offerToSaveIfNeeded: unknown result" << result;
        return SaveChoice::Cancel;
    }
}

bool DialogPrompter::askReplace(QWidget* parent, const QString& filePath)
{
    const QFileInfo info(filePath);
    QMessageBox box(parent);
    box.setWindowTitle(QStringLiteral("Runplan"));
    box.setWindowModality(Qt::WindowModal);
    box.setIcon(QMessageBox::Question);
    box.setText(QLatin1Char('"') + info.fileName() + QLatin1Char('"') +
                tr(" already exists. Do you want to replace it?"));
    box.setInformativeText(tr("A file or folder with the same name already exists in the folder ") +
                           info.absoluteDir().dirName() +
                           tr(". Replacing it will overwrite its current contents."));
    QPushButton* replace = box.addButton(tr("Replace"), QMessageBox::AcceptRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Cancel);
    execDialog(&box);
    return box.clickedButton() == replace;
}

bool DialogPrompter::askReplaceNotReadWhole(QWidget* parent, const QString& fileName)
{
    QMessageBox box(parent);
    box.setWindowTitle(QStringLiteral("Runplan"));
    box.setIcon(QMessageBox::Question);
    box.setText(tr("%1 was not read completely. Replace it with the configuration as shown?").arg(fileName));
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return execDialog(&box) == QMessageBox::Yes;
}

bool DialogPrompter::confirmDelete(QWidget* parent)
{
    return QMessageBox::warning(
               parent, tr("Delete multiple items"),
               tr("Do you want to delete this component and all the components attached to it?"),
               QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel) == QMessageBox::Ok;
}

int DialogPrompter::execDialog(QDialog* dialog)
{
    return dialog->exec();
}

bool DialogPrompter::askRecover(QWidget* parent, const QString& displayName)
{
    QMessageBox box(parent);
    box.setIcon(QMessageBox::Question);
    box.setText(tr("Runplan closed unexpectedly. Recover the unsaved changes to %1?").arg(displayName));
    QPushButton* recover = box.addButton(tr("Recover"), QMessageBox::AcceptRole);
    box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(recover);
    box.exec();
    return box.clickedButton() == recover;
}
