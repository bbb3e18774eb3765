// A process's descriptors, put in order before it opens any of its own. The first
// three are called from main, before any thread exists.
#pragma once

// Makes the standard streams safe to write to, whoever holds their other ends:
//   closed        opened on /dev/null, or the next socket would take the number and the traces
//   a pipe        a full one loses text instead of holding the writer up
//   a socket      likewise
//   a terminal    left alone: who stops its output wants it so
// A reader that has gone makes a write fail instead of ending the process. The mode of a socket,
// and of a pipe that cannot be opened again, changes for every process that shares it.
void GuardStdStreams();

// How many descriptors the process may have: its limit, or as many as a number holds.
int DescriptorLimit();

// Raises the process's limit of descriptors to nWanted, as far as it may.
void RaiseDescriptorLimit(int nWanted);

// How many descriptors clients may have for their sockets and files: the limit, less what the
// service itself needs; one at least.
int ClientDescriptors();

// Moves an open descriptor of a client, its socket or its file, above the lowest numbers and
// returns its new number, -1 when there is none left; -1 stays -1. The lowest numbers stay free for
// the exchange with the device, which waits in select: that takes no number from FD_SETSIZE on.
// Where there are no such numbers it stays where it is.
int MoveUp(int nFd);

// A second number for a client's open descriptor, above the lowest numbers; -1 when there is none
// left.
int Duplicate(int nFd);

// A descriptor that is closed with the object.
class COwnedFd {
 public:
  explicit COwnedFd(int nFd) : m_nFd(nFd) {}
  ~COwnedFd();
  COwnedFd(const COwnedFd&) = delete;
  COwnedFd& operator=(const COwnedFd&) = delete;

  int Get() const { return m_nFd; }

 private:
  int m_nFd;
};
