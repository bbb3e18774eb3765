"""The way in from outside leaves nobody room for guesses, and people at the pages enough."""

import time

import pytest
from entrance import Guest, came


def test_guesses_are_few(entrance, relay):
    guesser = Guest(entrance)
    browser = Guest(entrance, keep=True, address=guesser.address)  # already logged in
    assert browser.ask("/other.css").status == 200
    relay.end_passages()
    answers = guesser.statuses("/?[1-60]", "-u", "technician:wrong")
    assert set(answers) == {401, 429} and answers.count(401) < 40
    assert guesser.ask("/").status == 429  # not even with the right password
    assert came(relay) == []
    assert browser.statuses("/other.css?[1-60]") == [200] * 60
    assert Guest(entrance).ask("/other.css").status == 200


def test_guesses_of_somebody_who_once_had_a_login_are_limited(entrance):
    guest = Guest(entrance, keep=True)
    assert guest.statuses("/other.css?[1-100]") == [200] * 100  # far more than all pages need
    guesser = Guest(entrance, keep=True)
    assert guesser.ask("/").status == 200
    begin = time.monotonic()
    answers = guesser.statuses("/?[1-600]", "-u", "technician:wrong")
    seconds = time.monotonic() - begin
    assert set(answers) == {401, 429}
    assert answers.count(401) <= 101 + 20 * seconds


@pytest.mark.parametrize("uri", ["/cmp_UserSecurity", "/set_Login"])
def test_guesses_of_the_recorders_own_passwords_are_few(rig, entrance, uri):
    rig.device.play()
    guest = Guest(entrance, keep=True)
    assert guest.ask("/").status == 200
    answers = guest.statuses(f"{uri}?[1-40]", "-d", "strFD_AdminPasswd=1")
    assert set(answers) == {200, 429} and answers.count(200) < 25
