#include "dialogs/CShellExecute.hpp"

#include <utility>

#include "support/Traps.hpp"

namespace vantor {
std::int32_t CShellExecute::LaunchURL(NativeWindow owner, const std::string& address,
                                      std::int32_t show) {
    return Launch("CShellExecute.LaunchURL", {.owner = owner, .file = address, .show = show});
}

std::int32_t CShellExecute::Explore(NativeWindow owner, const std::string& folder,
                                    std::int32_t show) {
    return Launch("CShellExecute.Explore",
                  {.owner = owner, .verb = "explore", .file = folder, .show = show});
}

std::int32_t CShellExecute::LaunchFolder(NativeWindow owner, const std::string& folder,
                                         std::int32_t show) {
    return Launch("CShellExecute.LaunchFolder",
                  {.owner = owner, .verb = "open", .file = folder, .show = show});
}

std::int32_t CShellExecute::LaunchEmail(NativeWindow owner, const std::string& recipient,
                                        std::int32_t show) {
    return Launch("CShellExecute.LaunchEmail",
                  {.owner = owner, .file = "mailto:" + recipient, .show = show});
}

std::int32_t CShellExecute::PrintDocument(NativeWindow owner, const std::string& document) {
    return Launch("CShellExecute.PrintDocument",
                  {.owner = owner, .verb = "print", .file = document, .show = 0});
}

std::int32_t CShellExecute::LaunchDocument(NativeWindow owner, const std::string& document,
                                           const std::string& parameters, const std::string& folder,
                                           std::int32_t show) {
    return Start("CShellExecute.LaunchDocument",
                 {owner, "Open", document, parameters, folder, show});
}

std::int32_t CShellExecute::LaunchProgram(NativeWindow owner, const std::string& program,
                                          const std::string& parameters, const std::string& folder,
                                          std::int32_t show) {
    return Start("CShellExecute.LaunchProgram", {owner, "Open", program, parameters, folder, show});
}

bool CShellExecute::StillExecuting() const {
    bool active = false;
    Trapped("CShellExecute.StillExecuting",
            [&] { active = mProcess != 0 && mShell.IsActive(mProcess); });
    return active;
}

std::int32_t CShellExecute::Launch(const char* member, const ShellRequest& request) {
    return Run(member, [&] { return mShell.Execute(request); });
}

std::int32_t CShellExecute::Start(const char* member, const ShellRequest& request) {
    return Run(member, [&] { return mShell.Start(request, mProcess); });
}

std::int32_t CShellExecute::Run(const char* member, FunctionRef<std::int32_t()> launch) {
    constexpr std::int32_t kTaken = -1;
    std::int32_t result = 0;
    Trapped(member, [&] {
        mShell.Release(std::exchange(mProcess, 0));
        const std::int32_t code = launch();
        result = code < kFirstShellSuccess ? code : kTaken;
    });
    return result;
}

}  // namespace vantor
