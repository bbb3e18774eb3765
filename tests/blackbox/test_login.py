"""Passwords: both login paths, reading, changing."""

import hashlib
import re
import subprocess

import pytest
from daemon import START, clock, trace
from device import REFUSED, SILENCE, UNUSABLE, answer, change, query
from http_client import STANDARD_HEAD, Client, post

USER_QUERY = query("<stUserSec>")
USERS = answer(
    '<stUserSec ucFD_PWEnableFlag="1" strFD_NormalPasswd="normal" strFD_AdminPasswd="admin">'
    '<stCustomUser><USER_0 ucFD_UserStatus="1" strFD_UserName="a" strFD_UserPWD="first"/>'
    '<USER_1 strFD_UserPWD="second"/></stCustomUser></stUserSec>'
)


def user_list(users):
    return answer(f"<stUserSec><stCustomUser>{users}</stCustomUser></stUserSec>")


NO_USERS = answer("<stUserSec/>")
PAGE = "Referer: http://recorder/login.html\r\n"
ANONYMOUS = rb'\{ "jsession": "", "result": %d \}'
KNOWN = rb'\{ "jsession": "[0-9a-f]{32}", "result": %d \}'


def compare(rig, form, *steps, headers=PAGE):
    return rig.ask(post("/cmp_UserSecurity", form, headers), *steps)


class TestLoginPage:
    COMPARISONS = [
        ("the first user's password", "strFD_AdminPasswd=first", USERS, 1),
        ("the second user's password", "strFD_AdminPasswd=second", USERS, 0),
        ("the administrator password of the section", "strFD_AdminPasswd=admin", USERS, 0),
        ("another case", "strFD_AdminPasswd=First", USERS, 0),
        ("a beginning", "strFD_AdminPasswd=firs", USERS, 0),
        ("more than it", "strFD_AdminPasswd=first+", USERS, 0),
        ("an empty one", "strFD_AdminPasswd=", USERS, 0),
        ("none", "", USERS, 0),
        ("URL-encoded", "strFD_AdminPasswd=%66irst", USERS, 1),
        ("the name in another case", "STRFD_ADMINPASSWD=first", USERS, 1),
        ("any user name", "strUserName=nobody&strFD_AdminPasswd=first", USERS, 1),
        ("no password stored, none sent", "", NO_USERS, 1),
        ("no password stored, one sent", "strFD_AdminPasswd=x", NO_USERS, 0),
        ("unusable reply, none sent", "", UNUSABLE, 1),
        ("unusable reply, empty one sent", "strFD_AdminPasswd=", UNUSABLE, 1),
        ("unusable reply, one sent", "strFD_AdminPasswd=first", UNUSABLE, 0),
        (
            "127 characters",
            f"strFD_AdminPasswd={'p' * 127}",
            user_list(f'<USER_0 strFD_UserPWD="{"p" * 127}"/>'),
            1,
        ),
        (
            "200 characters on both sides are cut to 127",
            f"strFD_AdminPasswd={'p' * 200}",
            user_list(f'<USER_0 strFD_UserPWD="{"p" * 200}"/>'),
            1,
        ),
        (
            "a rejected user list leaves an empty password",
            "strFD_AdminPasswd=first",
            user_list('<USER_0 strFD_UserPWD="first"/><USER_10/>'),
            0,
        ),
        (
            "a third user ends the list",
            "strFD_AdminPasswd=first",
            user_list('<USER_0 strFD_UserPWD="first"/><USER_2 strFD_UserPWD="x"/>'),
            1,
        ),
    ]

    @pytest.mark.parametrize(
        "sentence, form, data, result", COMPARISONS, ids=[r[0] for r in COMPARISONS]
    )
    def test_password_is_compared_and_a_session_given_in_any_case(
        self, rig, sentence, form, data, result
    ):
        reply = compare(rig, form, data)
        assert re.fullmatch(KNOWN % result, reply.body)
        assert len(reply.chunks) == 2
        assert rig.device.requests == [USER_QUERY]

    def test_request_from_elsewhere_gets_an_empty_session(self, rig):
        for form, result in (("strFD_AdminPasswd=first", 1), ("strFD_AdminPasswd=x", 0)):
            reply = compare(rig, form, USERS, headers="Referer: http://recorder/index.html\r\n")
            assert re.fullmatch(ANONYMOUS % result, reply.body)

    def test_login_page_counts_wherever_it_stands(self, rig):
        requests = (
            post("/cmp_UserSecurity?from=login.html", ""),
            post("/cmp_UserSecurity", "from=login.html"),
            post("/cmp_UserSecurity", "", "X: login.html\r\n"),
        )
        for request in requests:
            assert re.fullmatch(KNOWN % 1, rig.ask(request, UNUSABLE).body)

    def test_session_is_what_md5sum_makes_of_the_second(self, rig):
        before = clock()
        session = re.search(rb"[0-9a-f]{32}", compare(rig, "", UNUSABLE).body)[0].decode()
        out = rig.daemon.stdout.since_mark()
        second = re.search(r"\x1b\[33m\x1b\[1mstrtime = (\d+)\n\x1b\[0m", out)[1]
        assert before <= int(second) <= clock()
        md5sum = subprocess.run(["md5sum"], input=second.encode(), capture_output=True, check=True)
        assert md5sum.stdout.decode().split()[0] == session
        assert hashlib.md5(second.encode()).hexdigest() == session
        assert f"\033[33m\033[1mmd5 = {session}\n\033[0m" in out

    def test_user_name_is_only_noted(self, rig):
        note = "CWebCtrl::cmp_UserSecurity, ucUserName = 2"
        compare(rig, "strUserName=0&strFD_AdminPasswd=first", USERS)
        rig.daemon.stdout.expect_in_order(
            START, trace("cmp_UserSecurity"), note, trace("getUserSecurityFromNet")
        )
        for form in ("strUserName=", ""):
            compare(rig, form, USERS)
            assert note not in rig.daemon.stdout.since_mark()

    def test_silent_device_lets_an_empty_password_in_and_no_other(self, rig):
        for form in ("strFD_AdminPasswd=", ""):
            assert re.fullmatch(KNOWN % 1, compare(rig, form, SILENCE).body)
        assert re.fullmatch(KNOWN % 0, compare(rig, "strFD_AdminPasswd=x", SILENCE).body)


class TestReading:
    def test_both_users_passwords_in_the_clear(self, rig):
        reply = rig.get("/get_UserSecurity", USERS)
        assert reply.chunks == [
            b'{ "strAdminPasswd": "first"',
            b', "strNormalPasswd": "second" ',
            b', "result": 1 }',
        ]
        rig.daemon.stdout.expect_in_order(
            START,
            trace("get_UserSecurity"),
            trace("getUserSecurityFromNet"),
            "stUserSecurity.stCustomUser[0].strFD_UserPWD = first",
            trace("get_UserSecurity"),
        )

    @pytest.mark.parametrize("data", [UNUSABLE, answer("")])
    def test_failed_query_gives_empty_passwords_and_a_second_trace(self, rig, data):
        reply = rig.get("/get_UserSecurity", data)
        assert reply.body == b'{ "strAdminPasswd": "", "strNormalPasswd": "" , "result": 0 }'
        rig.daemon.stdout.expect_in_order(
            trace("getUserSecurityFromNet"),
            trace("getUserSecurityFromNet"),
            "stUserSecurity.stCustomUser[0].strFD_UserPWD = ",
        )

    def test_attribute_names_fit_in_any_case(self, rig):
        reply = rig.get("/get_UserSecurity", USERS.replace(b"strFD_UserPWD", b"STRfd_userpwd"))
        assert reply.chunks[0] == b'{ "strAdminPasswd": "first"'


def user_0(password):
    return change(
        f'<stUserSec><stCustomUser><USER_0 strFD_UserPWD="{password}" /></stCustomUser></stUserSec>'
    )


class TestChanging:
    FORMS = [
        ("user 0", "strUserName=0&strConfirmPasswd=new", user_0("new")),
        ("user 256 is user 0", "strUserName=256&strConfirmPasswd=new", user_0("new")),
        ("text is user 0", "strUserName=admin&strConfirmPasswd=new", user_0("new")),
        ("no password", "strUserName=0", user_0("")),
        ("empty password", "strUserName=0&strConfirmPasswd=", user_0("")),
        ("127 characters", f"strUserName=0&strConfirmPasswd={'p' * 127}", user_0("p" * 127)),
        (
            "200 characters are cut to 127",
            f"strUserName=0&strConfirmPasswd={'p' * 200}",
            user_0("p" * 127),
        ),
        ("URL-encoded", "strUserName=%30&strConfirmPasswd=a+%22b", user_0('a "b')),
        ("names in capitals", "STRUSERNAME=0&STRCONFIRMPASSWD=p", user_0("p")),
        ("no user is user 2", "strConfirmPasswd=new", b""),
        ("empty user is user 2", "strUserName=&strConfirmPasswd=new", b""),
        ("user 1", "strUserName=1&strConfirmPasswd=new", b""),
        ("user -1", "strUserName=-1&strConfirmPasswd=new", b""),
    ]

    @pytest.mark.parametrize("sentence, form, datagram", FORMS, ids=[r[0] for r in FORMS])
    def test_only_the_first_user_fills_the_message(self, rig, sentence, form, datagram):
        assert rig.post("/set_UserSecurity", form, REFUSED).chunks == [b'{"result": 0 }']
        assert rig.device.requests == [datagram]

    def test_failure_is_traced_twice(self, rig):
        rig.post("/set_UserSecurity", "strUserName=0&strConfirmPasswd=new", REFUSED)
        rig.daemon.stdout.expect_in_order(
            START, trace("setUserSecurityToNet"), trace("setUserSecurityToNet")
        )

    def test_lock_failure_is_traced_twice(self, rig):
        rig.post("/set_LockOfPassword", "ucFD_ErrorCount=1", REFUSED)
        rig.daemon.stdout.expect_in_order(
            START, trace("setLockOfPasswordToNet"), trace("setLockOfPasswordToNet")
        )


class TestCachedLogin:
    def test_section_passwords_are_shown_and_traced(self, rig):
        reply = rig.get("/get_Login", USERS)
        assert reply.chunks == [
            b'{ "strFD_AdminPasswd": "admin"',
            b', "strFD_NormalPasswd": "normal"',
            b', "result": 1 }',
        ]
        assert rig.device.requests == [USER_QUERY]
        rig.daemon.stdout.expect_in_order(
            START,
            trace("get_Login"),
            trace("getLoginFromNet"),
            "===========m_stLogin.strFD_AdminPasswd================admin",
            "===========m_stLogin.strFD_NormalPasswd================normal",
        )

    def log_in(self, rig, form, data=USERS):
        """Both replies of one request on one connection."""
        rig.device.play(data)
        rig.daemon.mark()
        with Client() as client:
            client.send(post("/set_Login", form))
            replies = client.read_reply(), client.read_reply()
            assert client.pending() == b""
        assert [reply.head for reply in replies] == [STANDARD_HEAD] * 2
        assert rig.device.requests == [USER_QUERY]
        return replies

    LOGINS = [
        ("the administrator's", "strFD_AdminPasswd=admin", 1),
        ("the normal one", "strFD_AdminPasswd=normal", 1),
        ("another", "strFD_AdminPasswd=other", 0),
        ("another case", "strFD_AdminPasswd=Admin", 0),
        ("the first user's", "strFD_AdminPasswd=first", 0),
        ("more than it", "strFD_AdminPasswd=admin1", 0),
        ("URL-encoded", "strFD_AdminPasswd=%61dmin", 1),
        ("the name in small letters", "strfd_adminpasswd=admin", 1),
        ("63 characters and more", f"strFD_AdminPasswd={'a' * 80}", 0),
    ]

    @pytest.mark.parametrize("sentence, form, result", LOGINS, ids=[r[0] for r in LOGINS])
    def test_login_always_gets_two_replies(self, rig, sentence, form, result):
        first, second = self.log_in(rig, form)
        assert (
            first.body
            == b'{ "strFD_AdminPasswd": "admin", "strFD_NormalPasswd": "normal", "result": 1 }'
        )
        assert second.chunks == [b'{"result": %d }' % result]

    def test_lines_of_a_match_and_of_a_mismatch(self, rig):
        for password, outcome in (("normal", 0), ("other", -1)):
            self.log_in(rig, f"strFD_AdminPasswd={password}")
            rig.daemon.stdout.expect_in_order(
                START,
                trace("set_Login"),
                trace("get_Login"),
                "===========m_stLogin.strFD_NormalPasswd================normal",
                f"===============strParaValue==================={password}",
                f"''''''''''''''''''''''''''''ret=='{outcome}",
            )

    @pytest.mark.parametrize("form", ["", "strFD_AdminPasswd="])
    @pytest.mark.parametrize("data", [USERS, NO_USERS, UNUSABLE])
    def test_empty_password_never_matches(self, rig, form, data):
        assert self.log_in(rig, form, data)[1].body == b'{"result": 0 }'
        rig.daemon.stdout.expect_in_order(
            "===============000=============strParaValue==", "''''''''''''''''''''''''''''ret=='-1"
        )

    def test_long_passwords_are_known_by_their_first_seven_characters(self, rig):
        users = answer('<stUserSec strFD_AdminPasswd="12345678" strFD_NormalPasswd="abcdefghij"/>')
        for password, result in (("1234567", 1), ("12345678", 0), ("abcdefg", 1), ("abcdefgh", 0)):
            second = self.log_in(rig, f"strFD_AdminPasswd={password}", users)[1]
            assert second.body == b'{"result": %d }' % result

    def test_failed_query_forgets_the_cached_passwords(self, rig):
        self.log_in(rig, "strFD_AdminPasswd=admin")
        first, second = self.log_in(rig, "strFD_AdminPasswd=admin", UNUSABLE)
        assert first.body == b'{ "strFD_AdminPasswd": "", "strFD_NormalPasswd": "", "result": 0 }'
        assert second.body == b'{"result": 0 }'
