// SPDX-License-Identifier: Apache-2.0
#include "commands.h"
#include "touch_line.h"

namespace fp_phone {

int Play(const Options& options) {
  TouchPlayer player;
  if (!player.Connect(options.StateFolder())) {
    PrintError("{}: no program runs on this phone with --touch", Printable(options.root));
    return kFailed;
  }
  const std::string error = fp_host::PlayTouchRecording(
      options.recording, options.panel, options.pace,
      [&player](const auto& report) { return player.Send(EncodeTouchRecords(report)); });
  if (!error.empty()) {
    PrintError("{}", error);
    return kFailed;
  }
  if (!player.Finish()) {
    PrintError("the program ended before it had the whole recording");
    return kFailed;
  }
  return kDone;
}

}  // namespace fp_phone
