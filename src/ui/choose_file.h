#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace kavro {

/// What a save dialog offers.
struct SaveChoice {
    QString Title;
    QString Kind;              ///< of its first filter, for example "MAP Files"
    QString Suffix;            ///< of that kind, for example "map"; added to a name without one
    QString Name = {};         ///< proposed
    bool AsksToReplace = true; ///< false: what is there is not simply written over
};

/// Shows the save dialog `SaveDialog` for files of one kind, or for all files, which get no suffix. Empty
/// when it is cancelled.
QString ChooseSaveFile(QWidget* parent, const SaveChoice& choice);

/// The same without waiting: returns at once, and calls `chosen` unless the dialog is cancelled. It holds up
/// `parent` alone, for windows that stand beside an operation.
void AskSaveFile(QWidget& parent, const SaveChoice& choice, std::function<void(const QString& path)> chosen);

/// What an open dialog offers.
struct OpenChoice {
    QString Title;
    QString Kind;         ///< of its first filter, for example "Maps"
    QStringList Suffixes; ///< of that kind
    QString Path = {};    ///< proposed
};

/// Shows the dialog `OpenDialog` for a file of one kind, or for any that exists. Empty when it is cancelled.
QString ChooseOpenFile(QWidget* parent, const OpenChoice& choice);

/// Shows the dialog `FolderDialog` for a folder, beginning at that one. Empty when it is cancelled.
QString ChooseFolder(QWidget* parent, const QString& title, const QString& folder);

} // namespace kavro
