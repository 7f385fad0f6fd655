'use strict';
// The page: puts the tiles on it, finds by name and family, and opens the larger view.

const search = document.getElementById('search');
const order = ['strips', 'shapes', 'warps', 'blends', 'other'];
const families = order.filter((family) => tiles.some((tile) => tile.transition.family === family));
let family = '';

/** A name as one searches for it: without regard to case, and with any sign between words. */
const plain = (text) => text.toLowerCase().replace(/[_\s]+/g, ' ').trim();

function filter() {
  const wanted = plain(search.value);
  let found = 0;
  for (const { item, transition } of tiles) {
    const fits = (!family || transition.family === family) &&
      (plain(transition.name).includes(wanted) || plain(transition.function).includes(wanted));
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
