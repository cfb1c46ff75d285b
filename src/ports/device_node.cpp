#include "ports/device_node.h"

#include "link/runtime_failure.h"

#include <filesystem>
#include <fstream>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <grp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#ifdef Q_OS_LINUX
#include <sys/sysmacros.h>
#endif
#include <unistd.h>
#endif

namespace kavro {

std::string NoPermissionText(const DeviceRights& rights) {
    const std::string text = "You have no permission to use this device. ";
    if (!rights.GroupMayOpen)
        return text + "Its access rights let only its owner use it: ask the administrator of this computer.";
    return text + "It belongs to the group \"" + rights.Group + "\": run \"sudo usermod -aG " + rights.Group +
           " $USER\", then log out and log in again.";
}

#ifdef Q_OS_UNIX

namespace {

constexpr const char* DeviceFolder = "/dev/";

// Where lock files of serial devices may lie, in the order in which QSerialPort tries them.
constexpr const char* LockFolders[] = {"/var/lock", "/etc/locks", "/var/spool/locks",  "/var/spool/uucp",
                                       "/tmp",      "/var/tmp",   "/var/lock/lockdev", "/run/lock"};

std::string ReadFirstLine(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

// Path of the lock file of a device, empty when there is none: "LCK.." and the path below /dev with "_"
// for "/".
std::string FindLockFile(const std::string& path) {
    std::string name =
        path.rfind(DeviceFolder, 0) == 0 ? path.substr(std::string(DeviceFolder).size()) : path;
    for (char& character : name)
        if (character == '/')
            character = '_';
    for (const char* const folder : LockFolders) {
        std::string file = std::string(folder) + "/LCK.." + name;
        if (std::error_code ignored; std::filesystem::exists(file, ignored))
            return file;
    }
    return {};
}

// Process id in a lock file, 0 when it cannot be read; some programs pad it with blanks.
pid_t LockingProcess(const std::string& lockFile) {
    std::ifstream file(lockFile);
    pid_t process = 0;
    return file >> process && process > 0 ? process : 0;
}

DeviceRights RightsOf(const struct stat& node) {
    const group* const owner = getgrgid(node.st_gid);
    constexpr mode_t GroupReadWrite = S_IRGRP | S_IWGRP;
    return {owner != nullptr ? owner->gr_name : std::to_string(node.st_gid),
            node.st_gid != 0 && (node.st_mode & GroupReadWrite) == GroupReadWrite};
}

[[noreturn]] void ThrowNoLine(const std::string& kind) {
    throw RuntimeFailure("This is " + kind + ", not a serial device: choose another device.");
}

struct NodeKind {
    mode_t Type;
    const char* Name;
};
constexpr NodeKind NoLines[] = {
    {S_IFDIR, "a folder"}, {S_IFREG, "a file"},    {S_IFBLK, "a disk"},
    {S_IFIFO, "a pipe"},   {S_IFSOCK, "a socket"},
};

// Devices that can be opened, some even as a terminal, but lead to no line: opening /dev/ptmx makes a new
// pseudo-terminal. Linux has given them fixed numbers.
struct DeviceKind {
    unsigned Major, FirstMinor, LastMinor;
    const char* Name;
};
constexpr DeviceKind NoLineDevices[] = {
    {1, 3, 3, "the null device"},
    {4, 0, 63, "a console on the screen of this computer"},
    {5, 0, 0, "the terminal in which this program runs"},
    {5, 1, 1, "the console of this computer"},
    {5, 2, 2, "the device that makes pseudo-terminals"},
};

// What is no serial device by its kind. A device of another driver is found out when it is opened.
void RequireLine(const struct stat& node) {
    for (const NodeKind& kind : NoLines)
        if ((node.st_mode & S_IFMT) == kind.Type)
            ThrowNoLine(kind.Name);
#ifdef Q_OS_LINUX
    const unsigned number = minor(node.st_rdev);
    for (const DeviceKind& kind : NoLineDevices)
        if (major(node.st_rdev) == kind.Major && number >= kind.FirstMinor && number <= kind.LastMinor)
            ThrowNoLine(kind.Name);
#endif
}

} // namespace

std::string ResolveDevice(const std::string& device) {
    const std::string path = device.find('/') == std::string::npos ? DeviceFolder + device : device;
    std::error_code failed;
    const auto target = std::filesystem::canonical(path, failed);
    return failed ? path : target.string();
}

void RequireUsableDevice(const std::string& path) {
    struct stat node = {};
    if (stat(path.c_str(), &node) != 0) {
        if (errno == EACCES)
            throw RuntimeFailure("You have no permission to look into the folder of this device. Ask the "
                                 "administrator of this computer.");
        throw RuntimeFailure("There is no such device. Plug the adapter in, or choose another device.");
    }
    RequireLine(node);
    if (access(path.c_str(), R_OK | W_OK) != 0)
        throw RuntimeFailure(NoPermissionText(RightsOf(node)));
}

bool DevicePresent(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

bool LockForThisProgram(const QSerialPort& port) {
    return flock(port.handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

std::optional<bool> InputPending(const QSerialPort& port) {
    int waiting = 0;
    return ioctl(port.handle(), FIONREAD, &waiting) != 0 || waiting > 0;
}

std::string BusyText(const std::string& path) {
    const std::string lockFile = FindLockFile(path);
    const pid_t process = LockingProcess(lockFile);
    if (process == 0)
        return "The device is in use by another program. Close that program first.";
    if (process == getpid())
        return "The device is already open in this program as another COM port. Choose a device of its own "
               "for each COM port.";
    const std::string number = std::to_string(process);
    if (kill(process, 0) != 0 && errno == ESRCH)
        return "The lock file " + lockFile + " was left behind by another user's program (process " + number +
               "), which has ended. Remove it with \"sudo rm " + lockFile + "\".";
    const std::string program = ReadFirstLine("/proc/" + number + "/comm");
    return "The device is in use by another program (" + (program.empty() ? "" : program + ", ") +
           "process " + number + "). Close that program first.";
}

#else

std::string ResolveDevice(const std::string& device) {
    return device;
}

void RequireUsableDevice(const std::string& /*path*/) {}

bool DevicePresent(const std::string& /*path*/) {
    return true;
}

bool LockForThisProgram(const QSerialPort& /*port*/) {
    return true; // Windows opens serial ports for one program only
}

std::optional<bool> InputPending(const QSerialPort& /*port*/) {
    return std::nullopt;
}

std::string BusyText(const std::string& /*path*/) {
    return "The device is in use by another program. Close that program first.";
}

#endif

} // namespace kavro
