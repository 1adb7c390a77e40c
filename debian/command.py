#!/usr/bin/python3
"""The command vantor."""

from vantor.__main__ import main

main()
