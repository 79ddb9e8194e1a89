// The keys that a control in a window of the host's gets only if it is handed them: the message loops of hosts and toolkits
// take Tab for their own, and know nothing of the control's editing keys. One hook for the process, for one control at a time.
#pragma once

#include <windows.h>

#include <oleidl.h>
#include <wrl/client.h>

namespace kelda {

/// Whose control gets the keys.
class KeyTarget {
  public:
    KeyTarget(const KeyTarget&) = delete;
    KeyTarget& operator=(const KeyTarget&) = delete;

    /// @return empty where there is none at present.
    virtual Microsoft::WRL::ComPtr<IOleInPlaceActiveObject> ActiveObject() = 0;

  protected:
    KeyTarget() = default;
    ~KeyTarget() = default;
};

/// The hook, if there is one or once there is one, serves `target` from now on; null for none.
/// @param target  Not owned.
void ServeKeysOf(KeyTarget* target);

/// Installs the hook for the messages of this thread, unless the process has it already. A failure is traced.
void InstallKeyboardHook();

/// Removes the hook, if there is one, and serves nobody any more.
void RemoveKeyboardHook();

} // namespace kelda
