#pragma once

#include <string>
#include <vector>

namespace tarnwick {

// What the link asks of the dialog and of the machine. Any thread may call it. What concerns the dialog is
// done on the dialog's thread, in the order of the calls, and a call returns when it is done; once the dialog
// closes, a call returns false and does nothing.
class LinkPort {
public:
    virtual ~LinkPort() = default;
    // The text beside the status text.
    virtual bool SetLinkText(const std::string& text) = 0;
    virtual bool CopyToClipboard(const std::string& text) = 0;
    // A box over the dialog with one button; returns when the user has closed it.
    virtual bool ShowMessage(const std::string& caption, const std::string& text) = 0;
    // Splits the text into a path and a product name, and shows the file, with threads.
    virtual bool Load(const std::string& arguments) = 0;
    // Repaints the whole dialog.
    virtual bool Invalidate() = 0;

    // Runs a program, the first element, with the others as its arguments, without a shell, and waits until
    // it ends; closing the dialog ends it. Returns whether it ended with status 0.
    virtual bool RunProgram(const std::vector<std::string>& command) = 0;
    // Starts the first of the named programs that is installed, and doesn't wait for it.
    virtual void StartProgram(const std::vector<std::string>& names,
                              const std::vector<std::string>& arguments) = 0;
    // Where downloads go, made for the user alone when it is missing; without a separator at its end.
    virtual std::string DownloadFolder() = 0;
};

} // namespace tarnwick
