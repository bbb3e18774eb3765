"""The exchange behind /get_LangInfo and /set_LangInfo: datagrams, bodies and lines of output."""

from daemon import START, trace
from device import answer, query

LANGUAGE_QUERY = query("<stDisplay>")
CHINESE = answer('<stDisplay strLanguage="CN"/>')
SHOWS_CHINESE = b'{ "strLanguage": "CN", "result": 1 }'
SHOWS_FAILURE = b'{ "strLanguage": "EN", "result": 0 }'
SET_ENTRY = (START, trace("set_LangInfo"), "CWebCtrl::set_LangInfo, lang:CN.")
SET_EXIT = trace("set_LangInfo")

BEGIN = "FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:6000."
END = "FUN:GetParaInfoByCmd, LINE:477."
ENTRY = (START, trace("get_LangInfo"), trace("getLangInfoFromNet"), BEGIN)
EXIT = (trace("getLangInfoFromNet"), trace("get_LangInfo"))


def received(data, host="127.0.0.1"):
    return (
        f"CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS {host}], "
        f"port[6000 VS 6000],len[{len(data)}]."
    )
