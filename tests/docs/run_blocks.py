#!/usr/bin/python3
"""Runs every block of a page, in one folder and in their order.

Usage: run_blocks.py PAGE --quofp FILE --shared-object FILE --cc CC [--renew]

  c        a program: compiled and run, exit code 0
  sh       a script, in which every command succeeds
  console  commands after "$ " and what they print, to the letter; a line "..." stands for any lines. Variables set by a
           command of their own stay set
  python   run one after the other by one interpreter

quofp diff and quofp defects may also end with 1, their verdict. Comments before a block say the rest:
  <!-- before: COMMAND -->    makes what the block takes for granted
  <!-- not run: REASON -->    the block is not run
  <!-- tested: WHERE -->      it is, by another test
Pictures of the page in pictures/ are those that its blocks have made. --renew writes what is printed and drawn now into the
page; otherwise they are compared. Links lead to files.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
VERDICT = ('trap \'code=$?; [[ $code = 1 && $BASH_COMMAND =~ ^quofp\\ (diff|defects) ]] || exit $code\' ERR\n'
           'set -E -o pipefail\n')
MOST_UNLIKE = 0.05  # of a picture's pixels: fonts differ between machines


def run(command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        sys.exit(f'{command[-1]}\nends with {done.returncode}:\n{done.stdout}')
    return done.stdout


class Page:
    def __init__(self, options, work):
        self.path, self.options, self.work = options.page, options, work
        self.text, self.variables = self.path.read_text(), ''
        path = f'{pathlib.Path(options.quofp).resolve().parent}:{os.environ["PATH"]}'
        self.environment = {**os.environ, 'PATH': path, 'LC_ALL': 'C', 'PYTHONPATH': str(ROOT / 'python'),
                            'QUOFP_LIBRARY': options.shared_object}
        (work / 'samples').symlink_to(ROOT / 'samples')

    def shell(self, script):
        return run(['bash', '-c', VERDICT + self.variables + script + '\ntrue'], cwd=self.work, env=self.environment)

    def run_c(self, text):
        (self.work / 'block.c').write_text(text)
        shared = self.options.shared_object
        run([self.options.cc, '-std=c11', '-Wall', '-Wextra', '-Werror', f'-I{ROOT}/include', 'block.c', shared,
             f'-Wl,-rpath,{pathlib.Path(shared).parent}', '-o', 'program'], cwd=self.work)
        run(['./program'], cwd=self.work)

    def run_console(self, text):
        for command, shown in re.findall(r'^\$ (.*\n)((?:(?!\$ ).*\n)*)', text, re.M):
            printed = self.shell(command)
            if re.match(r'\w+=', command):
                self.variables += command
            pattern = re.escape(shown).replace(re.escape('...\n'), '(?:.*\n)*')
            if re.fullmatch(pattern, printed):
                continue
            if self.options.renew and '...\n' not in shown:
                self.text = self.text.replace(f'\n$ {command}{shown}', f'\n$ {command}{printed}', 1)
            else:
                sys.exit(f'$ {command}prints\n{printed}the page says\n{shown}')

    def run_blocks(self):
        blocks = re.findall(r'((?:^<!-- .* -->\n)*)^```(\w*)\n((?:.*\n)*?)```$', self.text, re.M)
        assert len(blocks) * 2 == len(re.findall('^```', self.text, re.M)), 'a block without end'
        python = ''
        for notes, language, text in blocks:
            for command in re.findall(r'<!-- before: (.*) -->', notes):
                self.shell(command)
            if re.search(r'<!-- (not run|tested): \S', notes):
                continue
            if language == 'python':
                python += text
            elif language == 'sh':
                self.shell(text)
            elif language in ('c', 'console'):
                getattr(self, f'run_{language}')(text)
            else:
                sys.exit(f'```{language}: neither run nor said to be so\n{text}')
        if python:
            run([sys.executable, '-c', python], cwd=self.work, env=self.environment)

    def check_links(self):
        for target in re.findall(r'\]\(([^)#:]+)[)#]', self.text):
            if not (self.path.parent / target).exists() and not target.startswith('pictures/'):
                sys.exit(f'{target}: no such file')

    def check_pictures(self):
        for name in re.findall(r'\(pictures/([^)]+)\)', self.text):
            made, kept = next(self.work.rglob(name), None), self.path.parent / 'pictures' / name
            if made is None:
                sys.exit(f'pictures/{name}: no block makes it')
            if self.options.renew:
                shutil.copy(made, kept)
                continue
            table = self.shell(f"quofp diff '{kept}' '{made}' --format csv 2>/dev/null").splitlines()
            figures = dict(zip(*(line.split(',') for line in table)))
            width, height = (int.from_bytes(made.read_bytes()[at:at + 4], 'big') for at in (16, 20))
            if int(figures.get('count') or width * height) > MOST_UNLIKE * width * height:
                sys.exit(f'pictures/{name} is not what the page draws: renew it by scripts/renew-pages')


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('page', type=lambda name: pathlib.Path(name).resolve())
    for name in ('--quofp', '--shared-object', '--cc'):
        parser.add_argument(name, required=True)
    parser.add_argument('--renew', action='store_true')
    with tempfile.TemporaryDirectory() as work:
        page = Page(parser.parse_args(), pathlib.Path(work))
        page.run_blocks()
        if page.options.renew:
            page.path.write_text(page.text)
        page.check_links()
        page.check_pictures()


if __name__ == '__main__':
    main()
