#pragma once
// What the operator chose in the download dialog, as one value. The dialog
// stays loaded and hidden for the whole of a run; the live test screens, the
// run's phase changes and the capture read this value instead of the
// dialog's controls. Lengths of time keep the text of the list item they came
// from ("0.5", "10.0", "20"): their readers take its leading number in
// minutes. The poll interval is only ever used as a number, so it is one.

#include <string>

namespace kyt {

// The unit the occlusion graph is drawn in. No unit is chosen until the
// occlusion block of the dialog has been enabled once, which chooses PSI.
enum class OcclusionUnit { none, psi, mmhg, kpa };

struct DownloadChoice {
    char download_mode = ' ';  // "1" summary, "2" data log, "3" real-time, "4" receive any; blank: none chosen
    char channel = ' ';        // "A" to "D"; blank: none chosen
    bool save_to_file = false;
    bool single_rate = false;
    bool occlusion = false;
    // A single-rate test has a length only when "Stop Test After" is on; in
    // every other case (also when neither length option is on yet) it runs
    // until it is stopped.
    bool run_indefinitely = true;
    std::string duration_minutes;   // item of the test-length list
    int poll_seconds = 0;           // poll interval of both live tests
    std::string occlusion_minutes;  // item of the occlusion-length list
    OcclusionUnit occlusion_unit = OcclusionUnit::none;
    bool report_output = false;
    // The two summary options keep their state while the report box is off:
    // whether the analyser prints the summary follows "Summary to Printer"
    // alone.
    bool summary_to_printer = false;
    bool summary_to_file = false;
    bool start_automatically = false;

    bool operator==(const DownloadChoice&) const = default;
};

}  // namespace kyt
