#pragma once

#include "link/messages.h"
#include "map/module_map.h"
#include "map/scan_form.h"
#include "map/session.h"

#include <QString>

#include <functional>
#include <string>

class QWidget;

namespace kavro {

class DeviceList;
class MainStatus;

/// The operations of the main window that fill the list of modules or read it again. Each throws
/// `RuntimeFailure` when it cannot begin; the list is as it was then.
class NetworkOperations {
public:
    /// `readMap` reads a map file, or throws `RuntimeFailure`.
    NetworkOperations(Session& session, Messages& messages, DeviceList& list, MainStatus& status,
                      std::function<ModuleMap(const std::string& path)> readMap);

    /// Asks what to search, and searches it. `rateIsFixed`: the device of the port keeps its own baud rate.
    void Search(QWidget* window, bool rateIsFixed);

    /// Reads every module of the list again; those that do not answer stay and are marked.
    void Refresh(QWidget* window);

    /// Takes over a map that the user chooses, and refreshes it.
    void Open(QWidget* window);

    /// What the last of them has to tell.
    const QString& Note() const { return note_; }

private:
    void Scan(kavro::Scan scan, QWidget* window);
    void SearchLine(QWidget* window);
    void RefreshList(QWidget* window);

    Session& session_;
    Messages& messages_;
    DeviceList& list_;
    MainStatus& status_;
    std::function<ModuleMap(const std::string& path)> readMap_;
    QString note_;
    bool failed_ = false;        // the last scan
    SearchFindings findings_;    // of the last scan
    bool checksumsKnown_ = true; // of the modules in the list
};

} // namespace kavro
