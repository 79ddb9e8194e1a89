// The script that runs in every document before all others.
#pragma once

namespace legacy_control {

/// For `testbed::chromium::Page::InstallBridge`. Its messages are JSON objects whose `kind` is one of
/// - "document" (`url`): the main frame has a new document, none of whose scripts has run;
/// - "title" (`text`): the main frame's document has another title;
/// - "external" (`name`, `arguments`): a page has called a member of window.external;
/// - "error" (`message`, `url`, `line`, `character`): a script has failed;
/// - "cookie" (`url`, `text`): a script has set a cookie;
/// - "link" (`id`, `url`): somebody wants to follow a javascript: link, which waits for the reply `{"id": , "follow": }`.
const char* DocumentShim();

} // namespace legacy_control
