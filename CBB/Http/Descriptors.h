// Prepares the process's descriptors before it opens any of its own. The first three functions are
// called from main, before any thread exists.
#pragma once

// Makes the standard streams safe to write to, whatever is at the other end:
//   closed        opened on /dev/null, or the next socket would get the number and the traces
//   a pipe        loses text when it is full instead of blocking the writer
//   a socket      the same
//   a terminal    left alone: stopping its output is meant to stop the writer
// When the reader is gone, or a file may not grow any more, a write fails instead of ending the
// process. The mode of a socket, and of a pipe that cannot be reopened, changes for every process
// that shares it.
void GuardStdStreams();

// How many descriptors the process may open: its limit, or INT_MAX if that is lower.
int DescriptorLimit();

// Raises the process's descriptor limit towards nWanted, as far as allowed.
void RaiseDescriptorLimit(int nWanted);

// How many descriptors clients may use for sockets and files: the limit minus what the service
// itself needs, but at least one.
int ClientDescriptors();

// Moves a client's descriptor (a socket or a file) above the lowest numbers and returns its new
// number, or -1 when none is left; -1 stays -1. The lowest numbers stay free for the exchange with
// the device, which waits in select, and select accepts only numbers below FD_SETSIZE. Where the
// limit is not above FD_SETSIZE nothing moves.
int MoveUp(int nFd);

// Duplicates a client's descriptor above the lowest numbers; -1 when none is left.
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
