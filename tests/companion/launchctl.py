"""Replaces the Mac's launchctl for one agent: bootstrap gui/UID PLIST, print gui/UID/LABEL and bootout gui/UID/LABEL."""
import contextlib
import os
import plistlib
import subprocess
import sys
import time
from pathlib import Path

from mac_and_desk import processes

command, target, *plist = sys.argv[1:]
domain, file = f"gui/{os.getuid()}", Path(os.environ["MAC"]) / "agent"
name, pid = file.read_text().split() if file.exists() else ("", 0)
if command == "bootstrap":
    agent = plistlib.loads(Path(plist[0]).read_bytes())
    if name or target != domain or not (agent["RunAtLoad"] and agent["KeepAlive"]):
        sys.exit("Bootstrap failed: 5: Input/output error")
    process = subprocess.Popen(agent["ProgramArguments"], cwd="/", start_new_session=True,
                               **dict.fromkeys(("stdin", "stdout", "stderr"), subprocess.DEVNULL))
    file.write_text(f"{domain}/{agent['Label']} {process.pid}")
elif name != target:
    sys.exit(113)
elif command == "print":
    print(f"{name} = {{\n\tstate = {'running' if int(pid) in processes(int(pid)) else 'spawn scheduled'}\n}}")
elif command == "bootout":
    while int(pid) in processes(int(pid)):  # only the agent gets the signal, not its children
        with contextlib.suppress(ProcessLookupError):
            os.kill(int(pid), 15)
        time.sleep(0.1)
    file.unlink()
