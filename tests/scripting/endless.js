for (;;);
