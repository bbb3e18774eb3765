"""Who is asked about a fault in a file of the product: unit tests first, whatever lives, the running
daemon or a browser next."""

# The pages: their unit tests are one program.
PAGES = ("web/src/model", "web/src/recorder", "web/src/state", "web/src/views")
# Folder: its own unit tests, and those of its users.
UNITS = {
    "encoding": (["encoding_tests", "encoding_duplicate_tests"], ["webctrl_test"]),
    "CBB/Util": (["util_test"], ["control_test", "config_test", "http_test", "webctrl_test"]),
    "CBB/Http": (["http_test", "http_memory_test"], ["webctrl_test", "webctrl_stack_test"]),
    "control": (["control_test"], ["webctrl_test"]),
    "config": (["config_test"], ["webctrl_test"]),
    "CBB/WebCtrl": (["webctrl_test"], ["webctrl_stack_test"]),
    **dict.fromkeys(PAGES, ()),
}

_QUERIES = "blackbox/queries blackbox/query_fields blackbox/query_branches"
_SETS = "blackbox/sets_device blackbox/sets_network blackbox/sets_wifi blackbox/set_outcomes"
_FILES = "blackbox/http_files faults/files faults/file_shortages"
_CROWDS = "blackbox/http_connections blackbox/pipelining faults/slow_clients faults/crowds"
_REQUESTS = "blackbox/http_requests blackbox/http_bodies blackbox/http_refusals blackbox/http_limits"
# What the start of a path says: files of tests. The first one that fits, from the top.
FILES = [
    ("encoding/", "blackbox/cfgfile_export blackbox/cfgfile_import"),
    ("CBB/Util/Logger", "blackbox/lifecycle faults/paths"),
    ("CBB/Util/DebugPrint", "blackbox/lifecycle faults/streams"),
    ("CBB/Util/Print", "blackbox/lifecycle faults/streams"),
    ("CBB/Util/OtherFun", "blackbox/login blackbox/sets_network"),
    ("CBB/Util/", "blackbox/lifecycle blackbox/exchange"),
    ("CBB/Http/Body", _FILES),
    ("CBB/Http/Conditions", _FILES),
    ("CBB/Http/Descriptors", "faults/crowds faults/surroundings"),
    ("CBB/Http/File", _FILES),
    ("CBB/Http/HeadRules", _REQUESTS),
    ("CBB/Http/LentText", _FILES),
    ("CBB/Http/LibraryFiles", _FILES),
    ("CBB/Http/LibraryMemory", "faults/memory faults/address_space blackbox/http_limits"),
    ("CBB/Http/MediaTypes", _FILES),
    ("CBB/Http/OpenInside", _FILES),
    ("CBB/Http/Re", _REQUESTS),
    ("CBB/Http/", _CROWDS),
    ("control/", "blackbox/exchange blackbox/exchange_replies"),
    ("config/", f"{_QUERIES} blackbox/gb28181_query"),
    ("CBB/WebCtrl/CfgFile", "blackbox/cfgfile_export blackbox/cfgfile_import"),
    ("CBB/WebCtrl/Gb28181", "blackbox/gb28181_query blackbox/gb28181_set"),
    ("CBB/WebCtrl/Login", "blackbox/login blackbox/sessions"),
    ("CBB/WebCtrl/PasswordLock", "blackbox/login blackbox/query_branches"),
    ("CBB/WebCtrl/Sessions", "blackbox/sessions"),
    ("CBB/WebCtrl/Query", _QUERIES),
    ("CBB/WebCtrl/SystemStatus", "blackbox/status"),
    ("CBB/WebCtrl/Set", _SETS),
    ("CBB/WebCtrl/FormReader", _SETS),
    ("CBB/WebCtrl/MaskSvrAddr", _SETS),
    ("CBB/WebCtrl/Wifi", "blackbox/sets_wifi blackbox/query_branches"),
    ("CBB/WebCtrl/WebCtrl.h", "blackbox/login blackbox/sessions"),
    ("CBB/WebCtrl/", "blackbox/lifecycle blackbox/http blackbox/exchange"),
]
# The same for views: files of tests in a browser.
VIEWS = [
    ("AccessPointCode", "accesspoint"),
    ("Dialogs", "saves drafts config"),
    ("History", "history"),
    ("Login", "signin"),
    ("Maintenance", "config"),
    ("Import", "config"),
    ("Later", "settings"),
    ("Platforms", "values"),
    ("Security", "signin values"),
    ("Shell", "drafts looks"),
    ("Status", "history health"),
    ("Video", "values"),
    ("fleet/", "fleet"),
    ("settings/", "settings"),
    ("parts/Banner", "health"),
    ("parts/Control", "labels drafts values"),
    ("parts/CopyButton", "history settings"),
    ("parts/Field", "drafts settings values"),
    ("parts/File", "fleet config"),
    ("parts/LabelsNotice", "labels"),
    ("parts/Section", "saves health values"),
    ("parts/Switches", "signin looks"),
    ("parts/Trace", "history"),
    ("parts/clipboard", "history settings"),
    ("parts/hooks", "signin saves"),
    ("parts/offer", "config fleet"),
    ("parts/report", "history"),
    ("parts/shown", "history"),
    ("parts/traces", "history"),
    ("", "saves looks"),
]


def near(table, path):
    return next((names for start, names in table if path.startswith(start)), "").split()


def daemon_tests(path):
    """The files of tests that ask the running daemon, those that wait least first."""
    return [name.replace("/", "/test_") + ".py" for name in near(FILES, path)]


def browser_tests(path):
    """The same in a browser, for views."""
    views = "web/src/views/"
    names = near(VIEWS, path[len(views) :]) if path.startswith(views) else []
    return [f"browser/{name}.test.js" for name in names]
