// What the tests of monitor mode start from: the terminal's window, the port behind it, and what
// has passed over the line by the indicator's own account.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "resources/Designs.hpp"
#include "tests/e2e/Bench.hpp"

namespace vantor::e2e {

class MonitorBench : public Bench {
protected:
    Window OpenMonitor() const {
        app->Choose("mnuToolsMonitor");
        const Window monitor = app->AwaitForm(kMonitorWindowDesign);
        Await("the keyboard", [&] { return app->Focus() == monitor.Child("comMonitor"); });
        return monitor;
    }

    static void AwaitStatus(const Window& monitor, const char* status) {
        Await(status, [&] { return monitor.Panel("sbStatusBar", 0) == status; });
    }
    static void OpenPort(const Window& monitor) {
        const std::string closed = monitor.Panel("sbStatusBar", 0);
        monitor.Choose("mnuCommOpen");
        Await("the port", [&] { return monitor.Panel("sbStatusBar", 0) != closed; });
    }
    static void AwaitShown(const Window& monitor, const std::string& text) {
        Await("on the screen: " + text,
              [&] { return monitor.Text("comMonitor").find(text) != std::string::npos; });
    }

    /// Presses `key` in the context menu.
    void Command(const Window& monitor, WORD key) const {
        const HWND terminal = monitor.Child("comMonitor");
        PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
        Await("the menu", [this] { return app->InMenu(); });
        Key(key);
        Await("the end of the menu", [this] { return !app->InMenu(); });
    }

    /// Chooses a file with these bytes to send; its progress window.
    Window SendFile(const Window& monitor, const std::string& bytes) const {
        const std::string path = FileOfRun("sent.txt");
        std::ofstream(path, std::ios::binary) << bytes;
        monitor.Choose("mnuCaptureSend");
        app->ChooseFile(path);
        return app->AwaitForm(kSendWindowDesign);
    }

    /// Waits until `line` of the file has been sent, as the progress window counts them.
    static void AwaitSent(const Window& progress, int line) {
        Await("line " + std::to_string(line), [&] {
            const std::string text = progress.Text("lblStatus");
            const std::size_t number = text.find_first_of("0123456789");
            return number != std::string::npos && std::stoi(text.substr(number)) >= line;
        });
    }

    /// The bytes that have passed in one direction: '>' to the indicator, '<' from it.
    static std::string Passed(char direction) {
        std::istringstream log(Content("indicator.log"));
        std::string bytes;
        for (std::string line; std::getline(log, line);) {
            const std::size_t at = line.find_first_of("<>-");
            if (at == std::string::npos || line[at] != direction) continue;
            bytes += Plain(line.substr(at + 2));
        }
        return bytes;
    }

    /// The milliseconds from the first to the last byte of one direction.
    static double Span(char direction) {
        std::istringstream log(Content("indicator.log"));
        std::vector<double> times;
        for (std::string line; std::getline(log, line);)
            if (line[line.find_first_of("<>-")] == direction) times.push_back(std::stod(line));
        return times.back() - times.front();
    }

private:
    /// The log's way of writing bytes undone: \r \n \\ and \xNN.
    static std::string Plain(const std::string& text) {
        std::string bytes;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '\\') {
                bytes += text[i];
                continue;
            }
            const char kind = text[++i];
            if (kind == 'x') {
                bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
                i += 2;
            } else {
                bytes += kind == 'r' ? '\r' : kind == 'n' ? '\n' : '\\';
            }
        }
        return bytes;
    }
};

}  // namespace vantor::e2e
