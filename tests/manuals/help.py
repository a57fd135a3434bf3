"""What the help of a program says."""
import re
import subprocess


def help_of(program, *verb):
    return subprocess.run([program, *verb, "--help"], check=True, capture_output=True, text=True).stdout


def options_in(text, indent):
    """The names of the options that the lines with this indent begin with."""
    lines = re.findall(rf"^ {{{indent}}}(-[^ ,]+(?:, ?-[^ ,]+)*)", text, re.MULTILINE)
    return {name for line in lines for name in re.split(", ?", line)}


def verbs_of(program):
    text = help_of(program)
    sentence = re.search(r"A first word (.*) is a verb", text)
    if sentence:
        return set(re.findall(r'"(\w+)"', sentence[1]))
    _, _, commands = text.partition("Subcommands:\n")
    return set(re.findall(r"^  (\w+)", commands.partition("\n\n")[0], re.MULTILINE))


def options_of(program, verb=""):
    return options_in(help_of(program, *verb.split()), 2)
