"""What the soak test's processes share: counters, numbers, and the command to pause or stop."""

import multiprocessing.sharedctypes

_KEPT = 1 << 20


class State:
    FIELDS = (
        "number",  # of the device's last answer
        "troubles",  # exchanges that the device has spoilt
        "late",  # late answers sent into a later exchange
        "last_late",  # the number of the last of them
        "floods",  # bursts of hostile datagrams begun
        "flooding",  # one is in progress
        "change",  # the last number given to a set
        "uninvited",  # sets that reached the device although nobody sent them
        "accepting",  # the device accepts sets
        "exchanges",
        "rests",  # how often no message was waiting for the device
        "datagrams",  # hostile ones sent
        "paused",
        "stopped",
    )

    def __init__(self):
        self._array = multiprocessing.sharedctypes.RawArray("q", len(self.FIELDS))
        self._lock = multiprocessing.Lock()
        self.shown = multiprocessing.sharedctypes.RawArray("q", _KEPT)
        self._issued = multiprocessing.sharedctypes.RawArray("q", _KEPT)
        self._arrived = multiprocessing.sharedctypes.RawArray("q", _KEPT)

    def __getattr__(self, name):
        return self._array[State.FIELDS.index(name)]

    def add(self, name, count=1):
        """Adds to a field that has one writer, or under the lock; returns the new value."""
        index = self.FIELDS.index(name)
        self._array[index] += count
        return self._array[index]

    def put(self, name, value):
        self._array[self.FIELDS.index(name)] = value

    def issue(self):
        """A number for a set, noted before the set is sent."""
        with self._lock:
            number = self.add("change")
        self._issued[number % _KEPT] = number
        return number

    def arrive(self, number):
        """Called by the device with the number in a set; false when nobody has issued it."""
        if number <= 0 or self._issued[number % _KEPT] != number:
            return False
        self._arrived[number % _KEPT] = number
        return True

    def arrived(self, number):
        return self._arrived[number % _KEPT] == number

    def show_once(self, number):
        """Notes that a browser has seen this number; false when one has already seen it."""
        first = self.shown[number % _KEPT] != number
        self.shown[number % _KEPT] = number
        return first


class Window:
    """The time of one request, as seen on the device's side."""

    def __init__(self, state):
        self._state = state
        self._number, self._troubles, self._late = state.number, state.troubles, state.late
        self._floods, self._flooding = state.floods, state.flooding

    def was_flooded(self):
        state = self._state
        return state.floods != self._floods or bool(self._flooding or state.flooding)

    def had_trouble(self):
        return self._state.troubles != self._troubles or self.was_flooded()

    def check_number(self, number):
        state = self._state
        if not self._number < number <= state.number:
            came_late = state.late != self._late and number == state.last_late
            if number > state.number or not (came_late or self.was_flooded()):
                return f"the answer {number}, not one of {self._number + 1} to {state.number}"
        if not state.show_once(number):
            return f"the answer {number} a second time"
        return None
