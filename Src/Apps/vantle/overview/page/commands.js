'use strict';
// The commands that render what one looks at, as text to be copied into a shell.

/** A file's name made of a transition's. */
const fileName = (transition) => transition.name.replace(/[^A-Za-z0-9]+/g, '_');

/** Text as one word for a shell. */
const quoted = (text) => /^[\w.,:/@%+=-]+$/.test(text) ? text : `'${text.replaceAll("'", `'\\''`)}'`;

/** Renders these transitions one after the other, the two inputs in turn around them. */
function renderCommand(transitions, ...options) {
  const inputs = [gallery.fromArgument, gallery.toArgument];
  const film = [0, ...transitions.keys()].map((_, place) => quoted(inputs[place % 2]));
  return ['vantle render', ...film, ...transitions.flatMap(({ name }) => ['-t', quoted(name)]),
          ...gallery.options, ...options].join(' ');
}

async function copy(button) {
  const source = document.getElementById(button.dataset.copy);
  try {
    await navigator.clipboard.writeText(source.textContent);
  } catch {
    // Not allowed here: selected, it is one key from being copied.
    getSelection().selectAllChildren(source);
    if (!document.execCommand('copy')) return;
  }
  button.textContent = 'Copied';
  setTimeout(() => { button.textContent = 'Copy'; }, 1500);
}

for (const button of document.querySelectorAll('[data-copy]')) button.addEventListener('click', () => copy(button));
