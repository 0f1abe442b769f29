// proc_and_sys.h - the kernel's own file trees, of the device's namespaces instead of the
// machine's.
#ifndef SANDBOX_DEVICE_PROC_AND_SYS_H_
#define SANDBOX_DEVICE_PROC_AND_SYS_H_

namespace sandbox {

// Mounts a /proc that shows the processes of this PID namespace. With `protect`, what it tells of
// the machine can only be read.
void MountProcesses(bool protect);

// Mounts a /sys that shows the network interfaces of this network namespace, read-only.
void MountDevices();

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_PROC_AND_SYS_H_
