// Every text of the pages, in Portuguese (the default) and English. The system's own error texts are
// shown as the API gives them and are not translated here.
const pt = {
  appName: 'Guia Nimbara',
  skipToContent: 'Saltar para o conteúdo',
  navMain: 'Navegação principal',
  navForm: 'Nova Guia',
  navList: 'Guias',
  navSummary: 'Resumo do mês',
  navClients: 'Clientes',
  navSettings: 'Configuração',
  navImport: 'Importar',
  navUsers: 'Utilizadores',
  language: 'Idioma',
  switchLanguage: 'English',
  signedInAs: 'Sessão de',
  logout: 'Sair',
  loginTitle: 'Entrar',
  loginName: 'Utilizador',
  loginPassword: 'Palavra-passe',
  loginSubmit: 'Entrar',
  loginFailed: 'Utilizador ou palavra-passe errados.',
  loginLimited: 'Demasiadas tentativas. Espere um pouco e tente de novo.',
  loading: 'A carregar…',
  notFound: 'Esta página não existe.',
  serverUnreachable: 'O servidor não responde.',
} as const;

export type TextKey = keyof typeof pt;

const en: Record<TextKey, string> = {
  appName: 'Guia Nimbara',
  skipToContent: 'Skip to content',
  navMain: 'Main navigation',
  navForm: 'New Guia',
  navList: 'Guias',
  navSummary: 'Month summary',
  navClients: 'Clients',
  navSettings: 'Settings',
  navImport: 'Import',
  navUsers: 'Users',
  language: 'Language',
  switchLanguage: 'Português',
  signedInAs: 'Signed in as',
  logout: 'Sign out',
  loginTitle: 'Sign in',
  loginName: 'User',
  loginPassword: 'Password',
  loginSubmit: 'Sign in',
  loginFailed: 'Wrong user or password.',
  loginLimited: 'Too many attempts. Wait a little and try again.',
  loading: 'Loading…',
  notFound: 'This page does not exist.',
  serverUnreachable: 'The server does not answer.',
};

export type Language = 'pt' | 'en';
const tables: Record<Language, Record<TextKey, string>> = { pt, en };
const STORAGE_KEY = 'nimbara.language';

let current: Language = localStorage.getItem(STORAGE_KEY) === 'en' ? 'en' : 'pt';

export function language(): Language {
  return current;
}

export function setLanguage(lang: Language): void {
  current = lang;
  localStorage.setItem(STORAGE_KEY, lang);
  document.documentElement.lang = lang === 'pt' ? 'pt-PT' : 'en';
}

// The text of `key`, with {name} placeholders filled from `values`.
export function t(key: TextKey, values: Record<string, string | number> = {}): string {
  return tables[current][key].replace(/\{(\w+)\}/g, (whole, name: string) =>
    name in values ? String(values[name]) : whole,
  );
}

export function locale(): string {
  return current === 'pt' ? 'pt-PT' : 'en-GB';
}
