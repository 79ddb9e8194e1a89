// Pages may have replaced whatever they can reach by the time a message goes out, so what that needs is taken at once.
#include "document_shim.h"

namespace legacy_control {

const char* DocumentShim() {
    return R"js((send) => {
    "use strict";
    const { stringify, parse } = JSON;
    const tell = (kind, content) => send(stringify({ kind, ...content }));

    const plain = (value) => ["string", "number", "boolean"].includes(typeof value) ? value : null;
    const external = new Proxy({}, {
        // What has a `then` could not be waited for.
        get: (target, name) => typeof name === "symbol" || name === "then"
            ? undefined
            : (...values) => tell("external", { name, arguments: values.map(plain) }),
        set: () => true,
    });
    Object.defineProperty(window, "external", { value: external, configurable: true, writable: true });

    const cookie = Object.getOwnPropertyDescriptor(Document.prototype, "cookie");
    Object.defineProperty(Document.prototype, "cookie", {
        ...cookie,
        set(text) {
            cookie.set.call(this, text);
            tell("cookie", { url: location.href, text: String(text) });
        },
    });

    window.addEventListener("error", (event) => {
        const report = () => {
            if (!event.defaultPrevented) {
                const { message, filename, lineno, colno } = event;
                tell("error", { message, url: filename, line: lineno, character: colno });
            }
        };
        if (!(event instanceof ErrorEvent)) {
            return;
        }
        // The page's own handler is called after this one, and may settle the matter.
        typeof window.onerror === "function" ? setTimeout(report) : report();
    });

    const waiting = new Map();
    let last = 0;
    window.addEventListener("click", (event) => {
        const link = event.composedPath().find((node) =>
            (node instanceof HTMLAnchorElement || node instanceof HTMLAreaElement) && node.href);
        if (link !== undefined && link.protocol === "javascript:" && !event.defaultPrevented) {
            event.preventDefault();
            last += 1;
            waiting.set(last, link.href);
            tell("link", { id: last, url: link.href });
        }
    });

    if (window === window.top) {
        tell("document", { url: location.href });
        let title = "";
        const tellTitle = () => {
            if (document.title !== title) {
                title = document.title;
                tell("title", { text: title });
            }
        };
        document.addEventListener("DOMContentLoaded", () => {
            tellTitle();
            new MutationObserver(tellTitle).observe(
                document.head ?? document, { childList: true, characterData: true, subtree: true });
        });
    }

    return (text) => {
        const { id, follow } = parse(text);
        const url = waiting.get(id);
        waiting.delete(id);
        if (follow) {
            location.href = url;
        }
    };
})js";
}

} // namespace legacy_control
