// Dark, light, or what the system says.

import { announce, byId } from './dom';

const kThemes = ['auto', 'light', 'dark'] as const;
type Theme = (typeof kThemes)[number];

function stored(): Theme {
  try {
    return kThemes.find((theme) => theme === localStorage.getItem('theme')) ?? 'auto';
  } catch {
    return 'auto';
  }
}

export function setUpTheme(): void {
  let theme = stored();
  const show = () => {
    document.documentElement.dataset.theme = theme;
    byId('theme').setAttribute('aria-label', `Theme: ${theme}`);
    byId('theme').title = `Theme: ${theme}`;
  };
  show();
  byId('theme').addEventListener('click', () => {
    theme = kThemes[(kThemes.indexOf(theme) + 1) % kThemes.length]!;
    try {
      localStorage.setItem('theme', theme);
    } catch {
      /* it lasts as long as the page */
    }
    show();
    announce(`Theme: ${theme}`);
  });
}
