// Client-side routing over the history API: the server answers every page path with index.html.
export type Page = (main: HTMLElement, params: Record<string, string>) => void | Promise<void>;

export interface RouteEntry {
  pattern: string; // "/guias/:id"
  page: Page;
  admin?: boolean;
}

export function match(routes: RouteEntry[], path: string): { route: RouteEntry; params: Record<string, string> } | null {
  const parts = path.split('/').filter(Boolean);
  for (const route of routes) {
    const want = route.pattern.split('/').filter(Boolean);
    if (want.length !== parts.length) continue;
    const params: Record<string, string> = {};
    const ok = want.every((w, i) => {
      if (w.startsWith(':')) {
        params[w.slice(1)] = decodeURIComponent(parts[i]);
        return true;
      }
      return w === parts[i];
    });
    if (ok) return { route, params };
  }
  return null;
}

let onNavigate: () => void = () => {};

export function startRouter(render: () => void): void {
  onNavigate = render;
  window.addEventListener('popstate', render);
  // Links inside the app change the page without a reload.
  document.addEventListener('click', (event) => {
    const link = (event.target as Element).closest('a');
    if (!link || event.defaultPrevented || event.button !== 0 || event.ctrlKey || event.metaKey || event.shiftKey) return;
    const href = link.getAttribute('href');
    if (!href || !href.startsWith('/') || href.startsWith('/api/') || link.hasAttribute('download')) return;
    event.preventDefault();
    navigate(href);
  });
  render();
}

export function navigate(href: string): void {
  if (href !== location.pathname + location.search) history.pushState(null, '', href);
  onNavigate();
}
