#pragma once
#include <QString>

#include <memory>

// --record: the whole dialogue with a modem, written to a file as it
// happens. The library talks to a pseudo-terminal that stands in for the
// modem's port; a relay thread passes every byte on to the real device and
// back, writes each chunk with its time and the line speed the library set
// (which it also sets on the real device), and so sees what a serial-line
// analyser would. `modemsim --replay FILE` plays the file back as a modem.
//
// File: one JSON object a line. The first names the port as the user gave
// it, its device and the start; then {"ms": <since start>, "dir": ">" (to
// the modem) or "<" (from it), "speed": <bits per second>, "hex": "<the
// bytes>", "text": "<readable>"}; a device that goes away ends it with
// {"ms": ..., "event": "gone"}, and the library's end goes away with it.
// The file is created new, readable by its owner only; a path that exists
// (a link included) is refused.
class DialogueRecorder
{
public:
    DialogueRecorder();
    ~DialogueRecorder();
    DialogueRecorder(const DialogueRecorder&) = delete;
    DialogueRecorder& operator=(const DialogueRecorder&) = delete;

    // Opens `device` (the user's `port`; locked as serial programs lock it,
    // refused when another program holds it or it is no terminal) and the
    // file, and starts the relay; false with *error otherwise.
    bool start(const QString& port, const QString& device, const QString& file, QString* error);
    // The device the library is to open instead of the real one.
    QString clientPath() const;
    // Ends the relay and closes the file (also done on destruction).
    void stop();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
