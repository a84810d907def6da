#!/usr/bin/env bash
# Usage: trial.sh     in a system of its own that holds the packages, as root; scripts/package runs it
# Installs the packages, uses them, removes them, and compares the files of the system before and after.
set -eu
cd /trial
export DEBIAN_FRONTEND=noninteractive HOME=/tmp
log=/tmp/trial.log
quietly() {
  "$@" > $log 2>&1 || { cat $log; exit 1; }
}
files() { # everything but what the package manager notes down about its own work
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /trial -o -path /var/lib/dpkg \
    -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \) -prune -o -print | sort
}
names=$(for file in *.deb; do dpkg-deb -f "$file" Package; done)

# What the packages need comes from Debian, before the first look: it stays when they go.
quietly apt-get update
needed=$(for file in *.deb; do dpkg-deb -f "$file" Depends; done | tr ',' '\n' | sed 's/(.*//; s/ //g' | sort -u |
  grep -vxF "$names")
quietly apt-get install -y --no-install-recommends $needed gcc libc6-dev make cmake pkg-config
files > /tmp/before

quietly apt-get install -y --no-install-recommends ./*.deb
echo "installed: $(echo $names)"
[ "$(dpkg-query -W -f '${db:Status-Status}\n' $names | sort -u)" = installed ]

[ "$(quofp --version | head -1)" = 'quofp 75' ]
quofp synth -o /tmp/finger.png --seed 5 > /dev/null
quofp quality /tmp/finger.png
for command in guess op watch; do gzip -dc /usr/share/man/man1/quofp-$command.1.gz | grep -q "^.B quofp $command"; done
completed=$(bash -c '. /usr/share/bash-completion/completions/quofp; COMP_WORDS=(quofp gue) COMP_CWORD=1; _quofp; echo $COMPREPLY')
[ "$completed" = guess ]
python3 -c 'import quofpalg, numpy; assert quofpalg.FP_ImageQuality(numpy.zeros((96, 96), numpy.uint8)).area == 100'

examples=/usr/share/doc/libquofpalg-dev/examples
quietly cmake -S $examples -B /tmp/by-cmake
quietly cmake --build /tmp/by-cmake
cp -r $examples /tmp/by-pkg-config
quietly make -C /tmp/by-pkg-config
for folder in /tmp/by-cmake /tmp/by-pkg-config; do ./programs.sh $folder libquoFPAlg.so.75; done
echo "used: tool, Python module, C examples by CMake, by pkg-config and by name"

quietly apt-get purge -y $names
files > /tmp/after
diff /tmp/before /tmp/after || { echo 'FAIL: files before (<) and after (>) differ'; exit 1; }
! ldconfig -p | grep quoFPAlg || { echo 'FAIL: the library is still known to the loader'; exit 1; }
echo "removed: nothing stayed behind"
