'use strict';
// The page: puts the tiles on it, finds by words and family, and opens the larger view.

const search = document.getElementById('search');
const order = ['strips', 'shapes', 'warps', 'blends', 'other'];
const families = order.filter((family) => tiles.some((tile) => tile.transition.family === family));
let family = '';

const wordsIn = (text) => text.toLowerCase().match(/[a-z0-9]+/g) ?? [];

/** As `vantle list` finds: a part of a name, or words that begin what it is called or described by. */
function isFoundBy(transition, wanted) {
  if ([transition.name, transition.function].some((name) => name.toLowerCase().includes(wanted))) return true;
  const words = wordsIn([transition.name, transition.family, transition.sentence, ...transition.words].join(' '));
  return wordsIn(wanted).every((start) => words.some((word) => word.startsWith(start)));
}

function filter() {
  const wanted = search.value.trim().toLowerCase();
  let found = 0;
  for (const { item, transition } of tiles) {
    const fits = (!family || transition.family === family) && isFoundBy(transition, wanted);
    item.hidden = !fits;
    found += fits;
  }
  document.getElementById('found').textContent = `${found} of ${tiles.length} transitions`;
  document.getElementById('nothing').hidden = found > 0;
}

function familyButton(label, value) {
  const button = document.createElement('button');
  button.type = 'button';
  button.textContent = label;
  button.setAttribute('aria-pressed', value === family);
  button.addEventListener('click', () => {
    family = value;
    for (const other of document.getElementById('families').children)
      other.setAttribute('aria-pressed', other === button);
    filter();
  });
  return button;
}

document.title = `Transitions: ${gallery.from} to ${gallery.to}`;
document.getElementById('inputs').textContent = `${gallery.from} → ${gallery.to}`;
document.getElementById('families').append(
  familyButton('All', ''), ...families.map((name) => familyButton(name, name)));
document.getElementById('grid').append(...tiles.map((tile) => tile.item));

const nearby = new IntersectionObserver((entries) => {
  for (const entry of entries) tiles.find((tile) => tile.item === entry.target).setNear(entry.isIntersecting);
}, { rootMargin: '50%' });
for (const tile of tiles) {
  nearby.observe(tile.item);
  tile.button.addEventListener('click', () => showTransition(tile));
}

search.addEventListener('input', filter);
document.getElementById('grid').addEventListener('keydown', moveFocus);
document.addEventListener('keydown', (event) => {
  if (event.key !== '/' || viewer.open || event.target === search) return;
  event.preventDefault();
  search.focus();
});
playAllButton.addEventListener('click', () => setPlayingAll(!playingAll()));
reducedMotion.addEventListener('change', () => setPlayingAll(!reducedMotion.matches));
setPlayingAll(!reducedMotion.matches);
filter();
