#include "map/network_operations_form.h"

#include "link/runtime_failure.h"
#include "map/device_list_form.h"
#include "map/fast_search.h"
#include "map/main_status_form.h"
#include "map/module_access.h"
#include "map/refresh.h"
#include "map/search.h"
#include "map/search_form.h"
#include "map/search_times.h"
#include "ui/choose_file.h"

#include <QStringList>

#include <optional>

namespace kavro {

namespace {

constexpr const char* NothingToRefresh =
    "There is no module to refresh. Search the line, or open a map, first.";

} // namespace

NetworkOperations::NetworkOperations(Session& session, Messages& messages, DeviceList& list,
                                     MainStatus& status,
                                     std::function<ModuleMap(const std::string& path)> readMap)
    : session_(session), messages_(messages), list_(list), status_(status), readMap_(std::move(readMap)) {}

void NetworkOperations::Search(QWidget* window, bool rateIsFixed) {
    session_.SearchAccepted = 0;
    SearchForm(session_, messages_, window, rateIsFixed).exec();
    if (session_.SearchAccepted == 0)
        return;
    OpenPort(session_.Line);
    std::optional<FirstRateOnly> firstRate;
    if (rateIsFixed)
        firstRate.emplace(session_.Line);
    SearchLine(window);
}

void NetworkOperations::SearchLine(QWidget* window) {
    kavro::Scan scan;
    scan.Make = [this](SearchEvents events) -> std::unique_ptr<LineSearch> {
        if (session_.Preferences.FastSearch)
            return std::make_unique<FastSearch>(session_, std::move(events));
        return std::make_unique<NetworkSearch>(session_, std::move(events));
    };
    scan.Begun = [this] {
        list_.clear();
        session_.SelectedModule = -1;
        checksumsKnown_ = true;
        status_.ShowCount(0);
    };
    scan.Found = [this](int index) {
        list_.InsertEntry(index);
        status_.ShowCount(list_.count());
    };
    scan.Changed = [this](int index) { list_.ShowEntry(index); };
    Scan(std::move(scan), window);
    if (session_.ModuleCount == 0 && !failed_)
        messages_.Show("No module found!");
}

void NetworkOperations::Refresh(QWidget* window) {
    if (session_.ModuleCount == 0) {
        session_.Note = NothingToRefresh;
        return;
    }
    OpenPort(session_.Line);
    RefreshList(window);
}

void NetworkOperations::RefreshList(QWidget* window) {
    kavro::Scan scan;
    scan.Refresh = true;
    scan.Make = [this](SearchEvents events) {
        return std::make_unique<ListRefresh>(session_, std::move(events), checksumsKnown_);
    };
    scan.Changed = [this](int index) { list_.ShowEntry(index); };
    Scan(std::move(scan), window);
    if (!failed_ && !findings_.RefreshStopped && findings_.NoAnswer.empty())
        checksumsKnown_ = true; // each module has told its own
}

void NetworkOperations::Open(QWidget* window) {
    const QString path =
        ChooseOpenFile(window, {.Title = "Open Map", .Kind = "Maps", .Suffixes = {"json", "map", "txt"}});
    if (path.isEmpty())
        return;
    const ModuleMap map = readMap_(path.toStdString());
    if (map.Count == 0)
        throw RuntimeFailure("There are no modules in " + path.toStdString() + ". Choose another map.");
    OpenPort(session_.Line);
    TakeOver(session_, map);
    checksumsKnown_ = map.ChecksumsKnown;
    list_.ShowAll();
    RefreshList(window);
}

void NetworkOperations::Scan(kavro::Scan scan, QWidget* window) {
    note_.clear();
    status_.ShowPort();
    status_.ShowCount(session_.ModuleCount);
    status_.ShowActivity(scan.Refresh ? "Refreshing..." : "Searching...");
    ScanForm form(session_, messages_, std::move(scan), window);
    form.exec();
    failed_ = form.Failed();
    findings_ = form.Findings();
    QStringList notes;
    for (const std::string& text : FindingTexts(findings_))
        notes << QString::fromStdString(text);
    note_ = notes.join(' ');
}

} // namespace kavro
