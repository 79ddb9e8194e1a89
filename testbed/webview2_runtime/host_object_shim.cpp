// The page's side of the host objects. A property that is read only extends a path; a message goes out when the value is
// waited for, or called. A value that was waited for hides `then`, or waiting for it would never end.
#include "host_objects.h"

namespace webview2_runtime {

const char* HostObjectShim() {
    return R"js((send) => {
    "use strict";
    const waiting = new Map();
    const documentKey = `${performance.timeOrigin} ${Math.random()}`;
    const inFrame = window !== window.top;
    let last = 0;

    const ask = (request) => new Promise((resolve, reject) => {
        if (inFrame) {
            reject(new Error("Host objects are not there in frames."));
            return;
        }
        last += 1;
        const text = JSON.stringify({ ...request, id: last, document: documentKey });
        waiting.set(last, { resolve, reject });
        send(text);
    });

    const remote = (root, path, isWaitedFor) => new Proxy(() => {}, {
        get: (target, key) => {
            if (typeof key === "symbol" || (key === "then" && isWaitedFor)) {
                return undefined;
            }
            if (key === "then") {
                return (resolve, reject) => ask({ ...root, path, call: false }).then(resolve, reject);
            }
            return remote(root, [...path, key], false);
        },
        set: () => false,
        apply: (target, self, values) => ask({ ...root, path, call: true, arguments: values }),
    });

    const hostObjects = new Proxy({}, {
        get: (target, key) => {
            if (typeof key === "symbol" || key === "then") {
                return undefined;
            }
            if (key === "sync") {
                throw new Error("Synchronous host objects are not implemented.");
            }
            return remote({ name: key }, [], false);
        },
    });
    window.chrome ??= {};
    Object.defineProperty(window.chrome, "webview", { value: { hostObjects }, configurable: true });

    return (text) => {
        const reply = JSON.parse(text);
        const { resolve, reject } = waiting.get(reply.id);
        waiting.delete(reply.id);
        if (reply.error !== undefined) {
            reject(new Error(reply.error));
        } else if (reply.handle !== undefined) {
            resolve(remote({ handle: reply.handle }, [], true));
        } else {
            resolve(reply.value);
        }
    };
})js";
}

} // namespace webview2_runtime
