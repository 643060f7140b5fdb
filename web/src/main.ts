import './styles.css';
import { ApiError, Session, api, loadSession } from './api';
import { h } from './dom';
import { TextKey, language, setLanguage, t } from './i18n';
import { loginPage } from './login';
import { RouteEntry, match, navigate, startRouter } from './router';
import { formPage } from './form';
import { guiaViewPage } from './guia_view';
import { listPage } from './list';
import { summaryPage } from './summary';
import { clientsPage } from './admin_clients';
import { settingsPage } from './admin_settings';
import { importPage } from './admin_import';
import { usersPage } from './admin_users';

const routes: RouteEntry[] = [
  { pattern: '/', page: formPage },
  { pattern: '/guias', page: listPage },
  { pattern: '/guias/:id', page: guiaViewPage },
  { pattern: '/summary', page: summaryPage },
  { pattern: '/admin/clients', page: clientsPage, admin: true },
  { pattern: '/admin/settings', page: settingsPage, admin: true },
  { pattern: '/admin/import', page: importPage, admin: true },
  { pattern: '/admin/users', page: usersPage, admin: true },
];

let session: Session | null = null;

const nav: { href: string; text: TextKey; admin?: boolean }[] = [
  { href: '/', text: 'navForm' },
  { href: '/guias', text: 'navList' },
  { href: '/summary', text: 'navSummary' },
  { href: '/admin/clients', text: 'navClients', admin: true },
  { href: '/admin/settings', text: 'navSettings', admin: true },
  { href: '/admin/import', text: 'navImport', admin: true },
  { href: '/admin/users', text: 'navUsers', admin: true },
];

function header(): HTMLElement {
  const here = location.pathname;
  const isAdmin = session?.role === 'admin';
  const links = nav
    .filter((item) => !item.admin || isAdmin)
    .map((item) => {
      const current = item.href === '/' ? here === '/' || here.startsWith('/guia/new') : here.startsWith(item.href);
      return h('li', {}, h('a', { href: item.href, 'aria-current': current ? 'page' : null }, t(item.text)));
    });
  const switchLanguage = h('button', { type: 'button', class: 'link', lang: language() === 'pt' ? 'en' : 'pt-PT' }, t('switchLanguage'));
  switchLanguage.addEventListener('click', () => {
    setLanguage(language() === 'pt' ? 'en' : 'pt');
    render();
  });
  const user = session?.user
    ? [h('span', { class: 'user' }, `${t('signedInAs')} ${session.user}`), logoutButton()]
    : [];
  return h('header', { class: 'top' },
    h('a', { class: 'skip', href: '#main' }, t('skipToContent')),
    h('span', { class: 'brand' }, t('appName')),
    h('nav', { 'aria-label': t('navMain') }, h('ul', {}, links)),
    h('div', { class: 'tools' }, ...user, switchLanguage));
}

function logoutButton(): HTMLElement {
  const button = h('button', { type: 'button', class: 'link' }, t('logout'));
  button.addEventListener('click', async () => {
    await api.post('/logout', {});
    await start();
  });
  return button;
}

async function render(): Promise<void> {
  const app = document.getElementById('app')!;
  const main = h('main', { id: 'main', tabindex: '-1' });
  if (!session) return;
  if (session.login_required && !session.user) {
    app.replaceChildren(main);
    loginPage(main, () => void start());
    return;
  }
  app.replaceChildren(header(), main);
  const found = match(routes, location.pathname);
  if (!found || (found.route.admin && session.role !== 'admin')) {
    main.append(h('h1', {}, t('notFound')));
    return;
  }
  main.append(h('p', { class: 'muted' }, t('loading')));
  try {
    await found.route.page(main, found.params);
  } catch (error) {
    // A session that ended (a restart, a logout elsewhere) leads back to the login.
    if (error instanceof ApiError && error.status === 401 && session.login_required) return start();
    main.replaceChildren(h('p', { class: 'error', role: 'alert' }, error instanceof ApiError ? error.message : t('serverUnreachable')));
  }
}

async function start(): Promise<void> {
  try {
    session = await loadSession();
  } catch {
    document.getElementById('app')!.replaceChildren(h('main', { id: 'main' }, h('p', { class: 'error', role: 'alert' }, t('serverUnreachable'))));
    return;
  }
  void render();
}

export function currentSession(): Session | null {
  return session;
}

setLanguage(language());
startRouter(() => void render());
void start();
export { navigate };
