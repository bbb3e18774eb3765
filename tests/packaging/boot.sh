#!/bin/sh
# boot.sh <root>: becomes process 1 of this root, in namespaces that case.sh has created.
set -e
top=$1

mount -t proc proc "$top/proc"
mount -t sysfs -o ro sysfs "$top/sys"
if grep -q name=systemd /proc/self/cgroup; then
  mount -t tmpfs tmpfs "$top/sys/fs/cgroup"
  mkdir "$top/sys/fs/cgroup/systemd"
  mount -t cgroup -o none,name=systemd systemd "$top/sys/fs/cgroup/systemd"
else
  mount -t cgroup2 cgroup2 "$top/sys/fs/cgroup"
fi
mount -t tmpfs tmpfs "$top/run"

# Only a container's devices: with terminals it would use those of the machine.
mount -t tmpfs tmpfs "$top/dev"
mkdir "$top/dev/pts" "$top/dev/shm" "$top/dev/mqueue" "$top/dev/hugepages"
mount -t devpts -o newinstance,ptmxmode=0666 devpts "$top/dev/pts"
ln -s pts/ptmx "$top/dev/ptmx"
for device in null:3 zero:5 full:7 random:8 urandom:9; do
  mknod -m 666 "$top/dev/${device%:*}" c 1 "${device#*:}"
done
mknod -m 666 "$top/dev/tty" c 5 0

cd "$top"
pivot_root . mnt
umount -l mnt
exec env -i container=other PATH=/usr/sbin:/usr/bin:/sbin:/bin /lib/systemd/systemd \
  --show-status=no --log-target=journal
